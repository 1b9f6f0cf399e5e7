#include "DocumentSession.h"
#include "TestEnv.h"

#include "app/ProcessState.h"
#include "documents/mvDocument.h"
#include "editing/frmGoto.h"
#include "language/SourceView.h"
#include "shell/frmMain.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>

// The go-to dialog, driven through its controls while it runs modally, and the routes
// around it from the word at the cursor.
class tst_frmGoto : public QObject {
    Q_OBJECT
    DocumentSession session;

    static frmGoto& dialog() { return frmGoto::Instance(); }
    static std::shared_ptr<mvDocument> open(const QString& text) {
        return DocumentSession::LabelledDocument(text);
    }
    // Runs `act` once the dialog is up, then gives its result.
    bool whileShown(const QString& target, std::function<void()> act) {
        QTimer::singleShot(0, this, act);
        return dialog().ShowGoto(target, session.Frame);
    }

private Q_SLOTS:
    void initTestCase() { session.StartCase(); }
    void cleanupTestCase() {
        ProcessState::Instance().ShutdownStarted = true;
        dialog().close();
        delete &dialog();
        ProcessState::Instance().ShutdownStarted = false;
        session.EndCase();
    }
    void init() { session.StartTest(); }
    void cleanup() { session.EndTest(true); }

    // A line number, and a label of the then active document chosen with Enter.
    void gotoLineAndLabel() {
        auto first = open(QStringLiteral("START: X = 1\n100 Y = 2\nZ = 3"));
        QVERIFY(whileShown(QString(), [] {
            QTest::mouseClick(dialog().optLine, Qt::LeftButton);
            dialog().txtLineNumber->setText(QStringLiteral("3"));
            QTest::mouseClick(dialog().cmdOK, Qt::LeftButton);
        }));
        QCOMPARE(first->Editor()->CursorLine(), 2);
        auto second = open(QStringLiteral("A\nB\nSECOND: C"));
        QVERIFY(whileShown(QStringLiteral("SECOND"), [] {
            QCOMPARE(dialog().cboTarget->count(), 1);
            QTest::keyClick(dialog().cboTarget->lineEdit(), Qt::Key_Return);
        }));
        QCOMPARE(second->Editor()->CursorLine(), 2);
    }

    // An unknown label: the common error box, and the dialog stays up until cancelled.
    void unknownLabel() {
        auto document = open(QStringLiteral("10 X = 1"));
        bool stillUp = false;
        QVERIFY(!whileShown(QStringLiteral("NOPE"), [&stillUp] {
            QTest::mouseClick(dialog().optLabel, Qt::LeftButton);
            QTest::mouseClick(dialog().cmdOK, Qt::LeftButton);
            stillUp = dialog().isVisible();
            QTest::mouseClick(dialog().cmdCancel, Qt::LeftButton);
        }));
        QVERIFY(stillUp);
        QCOMPARE(session.Answers->Texts(),
                 QStringList{"The following error has occurred:\nTarget label not found!"});
    }
};

BRIX_TEST_MAIN(tst_frmGoto)
#include "tst_frmGoto.moc"
