#pragma once

#include "BoxAnswers.h"
#include "DocumentFrame.h"
#include "HostAccountFixture.h"

#include <memory>

class frmMain;
class mvDocument;
class QString;

// What the tests of opening and saving share: the frame for the whole test case, and for
// each test a fresh demo account and a box answerer, so that no box waits for a person.
class DocumentSession {
public:
    std::unique_ptr<DocumentFrame> Frames;
    frmMain* Frame = nullptr;
    std::unique_ptr<HostAccountFixture> Account;
    std::unique_ptr<BoxAnswers> Answers;

    void StartCase();
    void EndCase() { Frames.reset(); }
    void StartTest();
    // Closes what the test left open and checks that nothing is left over: documents,
    // suspended auto-recovery, a box on screen, and with `strict` a box nobody expected.
    void EndTest(bool strict);

    // A new document holding `text`, its label lines ("NAME:" or a number first) flagged as
    // the lexer would, without waiting for a colouring pass.
    static std::shared_ptr<mvDocument> LabelledDocument(const QString& text);
};
