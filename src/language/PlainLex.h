#pragma once

#include "language/ISourceLex4.h"

// The scanner of a buffer that has no language: each line is one plain token, and its
// flags are 0.
class PlainLex final : public ISourceLex4 {
public:
    void ISourceLex4_BeginLineScan(SourceBuffer& buffer, int32_t line, QStringView text,
                                   int32_t reserved) override;
    void ISourceLex4_EndLineScan(SourceBuffer& buffer, bool& result) override;
    QString ISourceLex4_GetDesiredCase(const QString&) override { return {}; }
    void ISourceLex4_GetLineIndex(int32_t& index) override { index = scanIndex_; }
    int32_t ISourceLex4_GetProperties(int32_t& properties) override { return properties = 0; }
    void ISourceLex4_ScanToken(SourceToken& token) override;
    void ISourceLex4_SetLineIndex(int32_t index) override { scanIndex_ = index; }

private:
    int32_t line_ = 0;
    int32_t length_ = 0;
    int32_t scanIndex_ = 0;
};
