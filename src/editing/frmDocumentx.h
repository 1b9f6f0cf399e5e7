#pragma once

#include "editing/frmDocument.h"

// The document window with its own minimise, maximise and close buttons.
class frmDocumentx : public frmDocument {
    Q_OBJECT

public:
    explicit frmDocumentx(IFrame* frame);
};
