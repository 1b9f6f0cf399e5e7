#pragma once

class frmMain;

// The settings commands: the dialog on one of its tabs, and on OK the new settings put
// to work at once in the frame and in every open document.
class SettingsCommand {
public:
    // `tab` 1 General, 2 Highlight, 3 Tools. True when the settings changed.
    static bool Run(frmMain& frame, int tab);
    // What is on screen takes the present settings: the toolbar's icons, the recent list
    // on the File menu, and each document's font, colours, tab size, margin and wrapping.
    static void ApplyToScreen(frmMain& frame);
};
