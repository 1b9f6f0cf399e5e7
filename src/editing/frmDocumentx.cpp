#include "editing/frmDocumentx.h"

frmDocumentx::frmDocumentx(frmMain* frame)
    : frmDocument(frame, Qt::SubWindow | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                             Qt::WindowMinMaxButtonsHint | Qt::WindowCloseButtonHint) {}
