#pragma once

#include <memory>

class QWidget;
class mvDocument;

// The program's File Save As: the browser for the target, then the document's
// SaveToResource, and the recent list follows the document to its new name.
class modSave {
public:
    // True when written.
    static bool SaveAsCommand(const std::shared_ptr<mvDocument>& document, QWidget* owner);
};
