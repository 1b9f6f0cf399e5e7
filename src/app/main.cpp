#include "app/modMain.h"
#include "app/modPrintPdf.h"

int main(int argc, char** argv) {
    if (IsPrintPdfCommand(argc, argv))
        return RunPrintPdf(argc, argv);
    return RunBrix(argc, argv);
}
