#pragma once

#include <QMainWindow>
#include <QPointer>

class QMenu;
class QPrinter;
class QTextEdit;
class QTimer;

// The compiler's output, one modeless window for the whole process, owned by the frame. A
// double-click on a line goes to the source line whose number stands there, in the active
// document. Closing only hides it: the text stays for the next Results.
class frmResults : public QMainWindow {
    Q_OBJECT

public:
    // Loads the window on the first call. Empty text shows the last output again.
    static frmResults* ShowResults(const QString& text, QWidget* frame);

    explicit frmResults(QWidget* frame);

    QTextEdit* Results() const { return txResults_; }
    QMenu* Popup() const { return popup_; }
    // Prints the selection, or all of the text without one, on a printer already set up.
    void PrintTo(QPrinter& printer);
    void PrintResults();
    void CopyResults();
    void SelectAll();
    void SelectNone();
    void ChooseFont();
    // The double-click's work, after the click itself has selected its word.
    void DoubleClickTick();

protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildMenus();
    void placeInFrameCorner();

    QPointer<QWidget> frame_;
    QTextEdit* txResults_ = nullptr;
    QTimer* dblClkTimer_ = nullptr;
    QMenu* popup_ = nullptr;
    bool shown_ = false;
};
