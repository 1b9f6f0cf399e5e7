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
    // Tools whose command the program doesn't offer stay disabled whatever the rule says.
    static void Apply(CommandBar& bar, const Inputs& inputs);
};
