#pragma once

#include "documents/LabelList.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <cstdint>
#include <memory>
#include <optional>

class Application;
class ScintillaBuffer;
struct SearchScope;
class SourceView;
class clsDocView;
class mvResource;

// The one object that stands for an open document: a resource of the connection layer
// (none while new), a view that holds the editor, and a place in Documents. Property reads
// never raise; a failure inside one gives the default.
class mvDocument : public QObject, public std::enable_shared_from_this<mvDocument> {
    Q_OBJECT

public:
    // Numbers the document and puts it in Documents: the collection holds it from now on.
    static std::shared_ptr<mvDocument> Create();
    ~mvDocument() override;

    int32_t DocumentNumber() const { return documentNumber_; }
    int32_t NewNumber() const { return newNumber_; }
    std::shared_ptr<Application> ApplicationRef() const { return applicationRef_; }
    std::shared_ptr<mvResource> DocumentResource() const { return resource_; }
    clsDocView* View() const;

    bool ReadOnly() const;
    bool NewItem() const;
    bool IsDirty() const;
    QString Path() const;
    QString FileName() const;
    QString ItemID() const;
    bool LocalFile() const;
    bool Highlight() const { return highlight_; }
    void SetHighlight(bool highlight);
    QString DisplayName() const;
    QString TitleText() const;
    bool CanCompile() const;

    bool FileNew();
    bool MakeNew(std::shared_ptr<mvResource> resource);
    // Opens a path; an item that can't be written opens read only, one locked by someone
    // else asks first. True when loaded or made new; on false the caller closes it.
    bool FileOpen(const QString& path, bool readOnly);
    // Loads a resource: asks about missing and protected items and refuses folders. The
    // answer No to "does not exist" closes the document.
    bool OpenResource(std::shared_ptr<mvResource> resource, bool readOnly);
    // Writes to the document's own resource; the lock stays held.
    bool FileSave();
    bool FileSaveAs(const QString& path);
    // Writes to another resource, with the overwrite questions and the lock moving over
    // to the target.
    bool SaveToResource(std::shared_ptr<mvResource> target);
    // With `prompt`, unsaved changes are asked about first; false keeps the document open.
    // Without, it closes at once.
    bool FileClose(bool prompt);
    void Activate();
    void EnsureView();
    void SetDirty(bool flag);
    bool AutoSaveFlag() const;
    void SetAutoSaveFlag(bool flag);

    // Text from outside into the editor's form: value and subvalue marks as codes 29 and
    // 28, each tab as TabSize blanks (at least one).
    static QString HostToEditorText(const QString& text);
    // Editor text to the outside form: marks as U+F8FD and U+F8FC; mixed line ends all
    // become CR LF.
    static QString EditorToHostText(const QString& text);
    QString Text();
    // The same text again changes nothing: undo stack, bookmarks and dirty state stay.
    void SetText(const QString& text);
    QString SelText();
    // Replaces the selection (or inserts at the caret) as one undoable step.
    void SetSelText(const QString& text);
    // The selection in the editor's form, lines joined by CR LF; empty without one.
    QString SelectedText();
    void ReplaceSelection(const QString& text);
    void InsValue();
    void InsSubValue();
    // Moves the caret; with `adjust`, a target that was out of view is brought into the
    // upper part of the window.
    void ScrollTo(int32_t column, int32_t line, bool adjust);
    // The editor's text area if the caret's line can be seen in it, else null.
    QWidget* CursorLineVisible() const;
    // 1-based; 0 and 1 both mean the first line.
    void GotoLine(int32_t line);
    // Raises BrixErrors::LabelNotFound, "Target label not found!", for an unknown label.
    void GotoLabel(const QString& target);
    // The label cache, built from the lexer's line flags when it is empty.
    const LabelList& Labels();
    void BuildLabels();
    void DropLabels() { labels_.reset(); }

    // Looks for `text` from a place within the scope, up or down, and selects the match;
    // false when there is none. The place -1, -1 is the caret: the near end of the
    // selection in the direction of the search.
    bool Find(const QString& text, bool up, bool wholeWord, bool matchCase, int32_t column,
              int32_t line, const SearchScope& scope);
    // Replaces every match in the scope by a one-line text, as one undoable step; gives
    // the number replaced.
    int32_t ReplaceAll(const QString& text, const QString& replacement, bool wholeWord,
                       bool matchCase, const SearchScope& scope);

    // The block commands on the selected lines (or the caret's), and Format on the whole
    // program; each one undoable step.
    void IndentBlock(bool indent);
    void CommentBlock(bool comment);
    void ToggleCase();
    void Format();
    // Prints through the platform's print dialog, with page headers and line numbers.
    void PrintText();
    // Compiles the saved item on its host and shows the compiler's output in the results
    // window. Errors of the host go to the caller.
    void Compile();

    // The editor and its buffer; both exist once EnsureView has run.
    SourceView* Editor() const;
    ScintillaBuffer* Buffer() const;

Q_SIGNALS:
    // Raised once, after the document has left Documents.
    void DocumentClose();

private:
    struct Token {};

public:
    explicit mvDocument(Token);

private:
    void dropView();
    // Releases the resource and its lock, and lets go of it.
    void dropResource();
    // The main window's count of open documents holds each document once.
    void countIn();
    void countOut();
    // The editor's text to the resource, with the status line and auto-recover held off.
    // False when the user chose not to overwrite a change made on the host meanwhile.
    bool writeToResource();
    // A new operation on the editor, made first if need be; null without one.
    template <typename Op> std::unique_ptr<Op> newOperation();
    // Marks the editor's lines that a compiler's output names, until the next compile.
    void markMessageLines(const QString& output);

    int32_t documentNumber_ = 0;
    std::shared_ptr<mvResource> resource_;
    int32_t newNumber_ = 0;
    clsDocView* view_ = nullptr;
    // Qt owns the window; this tells when it is gone.
    QPointer<QWidget> viewWidget_;
    bool highlight_ = true;
    std::shared_ptr<Application> applicationRef_;
    bool closed_ = false;
    bool counted_ = false;
    std::optional<LabelList> labels_;
};
