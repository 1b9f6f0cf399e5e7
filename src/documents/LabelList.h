#pragma once

#include <QStringList>
#include <cstdint>
#include <vector>

// The labels of a document's text in the order of the text: name, 0-based line and
// 0-based column of the name's first character, as three parallel fields.
struct LabelList {
    QStringList Names;
    std::vector<int32_t> Lines;
    std::vector<int32_t> Columns;

    void Add(const QString& name, int32_t line, int32_t column) {
        Names << name;
        Lines.push_back(line);
        Columns.push_back(column);
    }
    // By its text, exactly: "100" is not "0100". -1 when absent.
    int32_t Find(const QString& name) const { return static_cast<int32_t>(Names.indexOf(name)); }
    int32_t Count() const { return static_cast<int32_t>(Names.size()); }
};
