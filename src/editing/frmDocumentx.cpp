#include "editing/frmDocumentx.h"

frmDocumentx::frmDocumentx(IFrame* frame)
    : frmDocument(frame, Qt::SubWindow | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                             Qt::WindowMinMaxButtonsHint | Qt::WindowCloseButtonHint) {}
