#include "DocumentSession.h"

#include "documents/mvDocument.h"
#include "language/LexClass.h"
#include "language/ScintillaBuffer.h"
#include "recovery/modAutoRecover.h"
#include "shell/frmMain.h"
#include "support/MsgBoxEx.h"

#include <QtTest>

void DocumentSession::StartCase() {
    Frames = std::make_unique<DocumentFrame>();
    Frame = Frames->Frame();
}

void DocumentSession::StartTest() {
    Account = std::make_unique<HostAccountFixture>();
    Answers = std::make_unique<BoxAnswers>();
    DocumentFrame::Reset();
}

void DocumentSession::EndTest(bool strict) {
    const bool unexpected = Answers->AnyUnexpected();
    // Whatever closing asks is answered afresh.
    Answers = std::make_unique<BoxAnswers>();
    DocumentFrame::CloseAll();
    QCOMPARE(Frame->DocumentCount, int16_t(0));
    // Every host round trip resumed what it suspended.
    QCOMPARE(modAutoRecover::Suspensions(), 0);
    QVERIFY(!MsgBox::IsOpen());
    QVERIFY(!strict || !unexpected);
    Answers.reset();
    Account.reset();
}

std::shared_ptr<mvDocument> DocumentSession::LabelledDocument(const QString& text) {
    auto document = mvDocument::Create();
    document->FileNew();
    document->Buffer()->SetAllText(text);
    ScintillaBuffer& buffer = *document->Buffer();
    for (int32_t line = 0; line < buffer.NumLines(); ++line) {
        const QString first = buffer.GetLine(line).section(QLatin1Char(' '), 0, 0);
        const bool label =
            first.endsWith(QLatin1Char(':')) || (!first.isEmpty() && first.at(0).isDigit());
        buffer.SetLineData(line, 1, label ? LexClass::FlagLabel : 0);
    }
    return document;
}
