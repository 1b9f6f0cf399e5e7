#include "DocumentSession.h"

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
