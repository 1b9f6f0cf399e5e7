#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <cstdint>

class QMessageBox;

// Answers the program's message boxes while it lives, in the order the answers were
// given, by pressing the box's own buttons; it keeps what each box showed. A message with
// only OK is pressed without an answer given; any other box that finds no answer left is
// recorded as unexpected and closed by its escape (or last) button.
class BoxAnswers {
public:
    struct Shown {
        QString Text;
        QString Caption;
        int Icon = 0;
        QStringList Buttons;
        bool CheckBox = false;
        QString CheckText;
        bool Unexpected = false;
    };

    BoxAnswers();
    ~BoxAnswers();
    BoxAnswers(const BoxAnswers&) = delete;
    BoxAnswers& operator=(const BoxAnswers&) = delete;

    // An answer code of MsgBoxEx.h; `tick` ticks the check box first.
    void Push(int32_t answer, bool tick = false);
    void Push(const QList<int32_t>& answers);
    // The texts of the boxes shown so far.
    QStringList Texts() const;
    int Left() const { return static_cast<int>(answers_.size()); }
    bool AnyUnexpected() const;

    QList<Shown> Seen;

private:
    void answer(QMessageBox& box);

    struct Answer {
        int32_t code;
        bool tick;
    };
    QList<Answer> answers_;
};
