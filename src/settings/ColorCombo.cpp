#include "settings/ColorCombo.h"

#include "settings/ColorList.h"
#include "settings/modColors.h"

#include <QColorDialog>
#include <QEvent>
#include <QPainter>
#include <QStandardItemModel>
#include <QStylePainter>

namespace {

constexpr int ValueRole = Qt::UserRole;

} // namespace

ColorCombo::ColorCombo(QWidget* parent) : QComboBox(parent) {
    setObjectName(QStringLiteral("cbColor"));
    setIconSize(QSize(24, 14));
    setMaxVisibleItems(20);
    connect(this, qOverload<int>(&QComboBox::activated), this, &ColorCombo::Choose);
}

void ColorCombo::SetValue(int32_t value) {
    value_ = value;
    setToolTip(modColors::DescribeColor(value));
    if (count() > 0)
        setCurrentIndex(ColorList::RowOf(value));
    update();
}

void ColorCombo::Fill() {
    if (count() > 0)
        return;
    auto* items = qobject_cast<QStandardItemModel*>(model());
    QFont category = font();
    category.setBold(true);
    QFont custom = font();
    custom.setItalic(true);
    for (const ColorList::Entry& entry : ColorList::Entries()) {
        auto* item = new QStandardItem(entry.Name);
        item->setData(entry.Value, ValueRole);
        if (entry.Value == ColorList::StandardHead || entry.Value == ColorList::SystemHead) {
            item->setFont(category);
            item->setFlags(item->flags() & ~(Qt::ItemIsSelectable | Qt::ItemIsEnabled));
        } else if (entry.Value == ColorList::CustomEntry) {
            item->setFont(custom);
        } else {
            item->setIcon(swatch(entry.Value));
            item->setToolTip(modColors::DescribeColor(entry.Value));
        }
        items->appendRow(item);
    }
    setCurrentIndex(ColorList::RowOf(value_));
}

void ColorCombo::Choose(int row) {
    const QVariant data = itemData(row, ValueRole);
    if (!data.isValid())
        return;
    const int32_t value = data.toInt();
    if (value == ColorList::CustomEntry) {
        pickCustom();
        return;
    }
    if (ColorList::IsMarker(value)) {
        setCurrentIndex(ColorList::RowOf(value_));
        return;
    }
    SetValue(value);
    Q_EMIT ValueChosen(value);
}

void ColorCombo::pickCustom() {
    QColorDialog dialog(modColors::ToQColor(value_), this);
    if (dialog.exec() == QDialog::Accepted) {
        SetValue(modColors::FromQColor(dialog.selectedColor()));
        Q_EMIT ValueChosen(value_);
    } else {
        setCurrentIndex(ColorList::RowOf(value_));
    }
}

QSize ColorCombo::sizeHint() const {
    // Wide enough for the longest system colour name, filled or not.
    const QFontMetrics metrics(font());
    QStyleOptionComboBox option;
    initStyleOption(&option);
    const QSize content(
        iconSize().width() + 8 +
            metrics.horizontalAdvance(QStringLiteral("Inactive Caption Background")),
        std::max(iconSize().height(), metrics.height()));
    return style()->sizeFromContents(QStyle::CT_ComboBox, &option, content, this);
}

QSize ColorCombo::minimumSizeHint() const {
    return sizeHint();
}

void ColorCombo::showPopup() {
    Fill();
    setCurrentIndex(ColorList::RowOf(value_));
    QComboBox::showPopup();
}

void ColorCombo::paintEvent(QPaintEvent*) {
    QStylePainter painter(this);
    QStyleOptionComboBox option;
    initStyleOption(&option);
    option.currentText = ColorList::NameOf(value_);
    option.currentIcon = swatch(value_);
    option.iconSize = iconSize();
    painter.drawComplexControl(QStyle::CC_ComboBox, option);
    painter.drawControl(QStyle::CE_ComboBoxLabel, option);
}

void ColorCombo::changeEvent(QEvent* event) {
    // System colours follow the palette; so do the frames of the swatches.
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange)
        refreshSwatches();
    QComboBox::changeEvent(event);
}

void ColorCombo::refreshSwatches() {
    for (int row = 0; row < count(); ++row) {
        const int32_t value = itemData(row, ValueRole).toInt();
        if (!ColorList::IsMarker(value)) {
            setItemIcon(row, swatch(value));
            setItemData(row, modColors::DescribeColor(value), Qt::ToolTipRole);
        }
    }
    setToolTip(modColors::DescribeColor(value_));
}

QIcon ColorCombo::swatch(int32_t value) const {
    const qreal ratio = devicePixelRatioF();
    const QSize size = iconSize();
    QPixmap pixmap(size * ratio);
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    // A frame in the text colour keeps a swatch of the paper's own colour visible.
    painter.setPen(QPen(palette().color(QPalette::Text), 1));
    painter.setBrush(modColors::ToQColor(value));
    painter.drawRect(QRectF(0.5, 0.5, size.width() - 1.0, size.height() - 1.0));
    return QIcon(pixmap);
}
