#pragma once

#include <QPointer>
#include <QWidget>
#include <cstdint>
#include <functional>
#include <memory>

class ISourceDraw2;
class SourceView;

// The line-number gutter of a source view: a strip of its own beside the view's viewport
// that, for every visible row (wrapped rows included), hands the draw hook a row record.
// The hook paints the numbers; without a hook the strip stays blank.
class LineNumberGutter final : public QWidget {
    Q_OBJECT

public:
    enum Mode : int16_t { ModeNone = 0, ModeLeftEdge = 1, ModeTextLeft = 2 };

    // `setRoom` gives the view the width the gutter takes from the left of its viewport.
    LineNumberGutter(SourceView& view, std::function<void(int)> setRoom);

    void SetDrawHook(std::shared_ptr<ISourceDraw2> hook);
    const std::shared_ptr<ISourceDraw2>& DrawHook() const { return hook_; }

    int16_t Mode() const { return mode_; }
    void SetMode(int16_t mode);
    // The digit width as set; the drawing forces it into 3 to 10.
    int32_t Digits() const { return digits_; }
    void SetDigits(int32_t digits);
    // The gutter's background, as a stored colour value.
    int32_t GutterColor() const { return gutterColor_; }
    void SetGutterColor(int32_t color);

    // Width in pixels of one digit of the view's text font.
    int32_t CharWidth() const;
    // The control's background colour, which keeps the gutter apart from the text.
    QColor TextBackColor() const;
    // Width taken from the viewport: 0 in mode 0.
    int Room() const;
    // Measures again after a change of the view's font or zoom.
    void Relayout();

Q_SIGNALS:
    // A press on the row of `line`.
    void LinePressed(int32_t line, Qt::KeyboardModifiers modifiers);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QFont textFont() const;
    int lineHeight() const;
    int32_t lineAtY(int y) const;
    void place();

    SourceView& view_;
    QPointer<QWidget> viewport_;
    std::function<void(int)> setRoom_;
    std::shared_ptr<ISourceDraw2> hook_;
    int16_t mode_ = ModeLeftEdge;
    int32_t digits_ = 5;
    // 3D face, until the settings have a colour of their own for it.
    int32_t gutterColor_ = static_cast<int32_t>(0x8000000Fu);
    int room_ = -1;
};
