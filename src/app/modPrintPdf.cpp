#include "app/modPrintPdf.h"

#include "app/ProcessState.h"
#include "documents/DocumentCollection.h"
#include "documents/DocumentPrinter.h"
#include "documents/mvConnection.h"
#include "documents/mvDocument.h"
#include "settings/Moriox.h"
#include "support/BrixError.h"
#include "support/EditorFont.h"
#include "support/MsgBoxEx.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFileInfo>
#include <QMessageBox>
#include <QTextStream>
#include <cstring>

namespace {

constexpr int kFailed = 2;

int fail(const QString& message) {
    QTextStream(stderr) << "brix: " << message << Qt::endl;
    return kFailed;
}

// What printing needs of the start-up: connections, marks, font and the user's settings,
// which are read and never written back.
void startUp() {
    ProcessState& state = ProcessState::Instance();
    mvConnection::Instance().Initialize(1);
    state.ComputeMarkStrings();
    state.FontInstalled = EditorFont::Add();
    state.Documents = std::make_unique<DocumentCollection>();
    state.Settings = std::make_unique<Moriox>();
    state.Settings->LoadSettings();
}

void takeDown() {
    ProcessState& state = ProcessState::Instance();
    state.Documents.reset();
    state.Settings.reset();
    EditorFont::Remove(state.FontInstalled);
    state.FontInstalled = false;
}

int printFile(const QString& output, const QString& file) {
    const QFileInfo info(file);
    if (!info.exists())
        return fail(QStringLiteral("%1: no such file").arg(file));
    if (!info.isFile() || !info.isReadable())
        return fail(QStringLiteral("%1: not a readable file").arg(file));

    // No one is there to answer a box: each one is taken as a refusal and reported.
    QStringList boxes;
    MsgBox::SetAnswerProvider([&boxes](QMessageBox& box) {
        boxes << box.text().simplified();
        if (QAbstractButton* button = box.escapeButton())
            button->click();
        else
            box.reject();
    });
    int status = 0;
    std::shared_ptr<mvDocument> document = mvDocument::Create();
    try {
        const bool opened = document->FileOpen(info.absoluteFilePath(), true);
        if (!opened || !boxes.isEmpty())
            status = fail(boxes.isEmpty() ? QStringLiteral("%1: could not be opened").arg(file)
                                          : QStringLiteral("%1: %2").arg(file, boxes.join(' ')));
        else if (!DocumentPrinter::PrintToPdf(*document, output))
            status = fail(QStringLiteral("%1: could not be written").arg(output));
    } catch (const BrixError& error) {
        status = fail(QStringLiteral("%1: %2").arg(file, error.Description));
    } catch (const std::exception& error) {
        status = fail(QStringLiteral("%1: %2").arg(file, QString::fromLocal8Bit(error.what())));
    }
    document->FileClose(false);
    MsgBox::SetAnswerProvider({});
    return status;
}

} // namespace

bool IsPrintPdfCommand(int argc, char** argv) {
    return argc > 1 && std::strcmp(argv[1], "--print-pdf") == 0;
}

int RunPrintPdf(int argc, char** argv) {
    // Nothing is shown, so no display is needed.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Brix"));
    QApplication::setOrganizationName(QStringLiteral("Tolvek"));
    QApplication::setApplicationVersion(QStringLiteral(BRIX_VERSION));

    const QStringList args = QApplication::arguments();
    if (args.size() != 4 || args.at(2).isEmpty() || args.at(3).isEmpty())
        return fail(QStringLiteral("usage: brix --print-pdf OUT.pdf FILE"));
    int status = kFailed;
    try {
        startUp();
        status = printFile(args.at(2), args.at(3));
    } catch (const BrixError& error) {
        status = fail(error.Description);
    } catch (const std::exception& error) {
        status = fail(QString::fromLocal8Bit(error.what()));
    }
    takeDown();
    return status;
}
