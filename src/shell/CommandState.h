#pragma once

#include <cstdint>
#include <memory>

class CommandBar;
class mvDocument;

// The enabled and checked flags of every tool on every band, set afresh from the active
// document by one table of rules.
class CommandState {
public:
    // What the rules look at, read in one go.
    struct Inputs {
        bool HasDocument = false;
        bool ReadOnly = false;
        bool IsDirty = false;
        bool Highlight = false;
        bool LineWrap = false;
        bool HasSelection = false;
        bool CanUndo = false;
        bool CanRedo = false;
        bool CanCompile = false;
        int16_t DocumentCount = 0;
        bool ClipboardText = false;
    };

    static Inputs Read(const std::shared_ptr<mvDocument>& document, int16_t documentCount);
    // Sets every tool that follows the document; the others are never touched here.
    static void Apply(CommandBar& bar, const Inputs& inputs);
    // Tools whose command the program doesn't offer are switched off once, when the bars
    // are built, and no rule turns them on.
    static void SwitchOffUnoffered(CommandBar& bar);
};
