#pragma once

#include <QComboBox>
#include <cstdint>

class QColorDialog;

// A colour list of the settings dialog: the entries of ColorList with a swatch beside
// each colour. It shows its current value even when that is a custom colour no entry
// holds; the tooltip describes that value. The entries are made on the first drop-down.
class ColorCombo : public QComboBox {
    Q_OBJECT

public:
    explicit ColorCombo(QWidget* parent = nullptr);

    int32_t Value() const { return value_; }
    // Sets the value without a signal.
    void SetValue(int32_t value);
    // Makes the entries; later calls do nothing.
    void Fill();
    // Acts as a click on an entry: a colour becomes the value, the custom entry asks for
    // one, a head entry does nothing.
    void Choose(int row);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    void showPopup() override;

Q_SIGNALS:
    // The user chose a colour.
    void ValueChosen(int32_t value);

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    QIcon swatch(int32_t value) const;
    void pickCustom();
    void refreshSwatches();

    int32_t value_ = 0;
};
