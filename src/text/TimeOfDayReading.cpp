// TimeOfDayReading.cpp - reading a time of day (H:MM:SS with or without .mmm) out of a token.
#include "VeloraUtils/TokenReading.h"

#include "detail/TokenCore.h"

using namespace velora::token_core;

namespace {

// Reads the fixed-shape fields from `p`, adding each digit times its weight to `sum`. On failure `p` is
// left on the character that did not fit.
class TimeFields {
public:
    explicit TimeFields(const char* p) : p_(p) {}

    const char* Position() const { return p_; }
    unsigned int Sum() const { return sum_; }

    bool Digit(unsigned int weight) {
        if (!IsDigit(*p_)) return false;
        sum_ += static_cast<unsigned int>(*p_++ - '0') * weight;
        return true;
    }

    // A separator of 0 never matches: the NUL ends the text, it is never stepped over.
    bool Separator(char separator) {
        if (*p_ == '\0' || *p_ != separator) return false;
        ++p_;
        return true;
    }

    // H or HH then the separator; `unit` is what one second is worth.
    bool Hours(char separator, unsigned int unit) {
        if (!IsDigit(*p_)) return false;
        const auto first = static_cast<unsigned int>(*p_++ - '0');
        if (Separator(separator)) {
            sum_ += first * 3600u * unit;
            return true;
        }
        sum_ += first * 36000u * unit;
        return Digit(3600u * unit) && Separator(separator);
    }

private:
    const char* p_;
    unsigned int sum_ = 0;
};

unsigned int ReadTimeOfDay(const char** cursor, char delimiter, unsigned int defaultValue, char timeSeparator,
                           char fractionSeparator, bool withMilliseconds) {
    const unsigned int unit = withMilliseconds ? 1000u : 1u;
    TimeFields fields(*cursor);
    const bool ok = fields.Hours(timeSeparator, unit) && fields.Digit(600u * unit) &&
                    fields.Digit(60u * unit) && fields.Separator(timeSeparator) && fields.Digit(10u * unit) &&
                    fields.Digit(unit) &&
                    (!withMilliseconds || (fields.Separator(fractionSeparator) && fields.Digit(100u) &&
                                           fields.Digit(10u) && fields.Digit(1u)));
    const char* p = fields.Position();
    // After a value, and after a failure that is not at the NUL, the rest of the token and its delimiter
    // are skipped; with delimiter 0 the cursor stays where reading stopped.
    *cursor = delimiter == '\0' ? p : PastDelimiter(p, delimiter);
    return ok ? fields.Sum() : defaultValue;
}

} // namespace

unsigned int U_ReadMillisecondFromStr(const char** cursor, char delimiter, unsigned int defaultValue,
                                      char timeSeparator, char fractionSeparator) {
    return ReadTimeOfDay(cursor, delimiter, defaultValue, timeSeparator, fractionSeparator, true);
}

unsigned int U_ReadSecondFromStr(const char** cursor, char delimiter, unsigned int defaultValue,
                                 char timeSeparator) {
    return ReadTimeOfDay(cursor, delimiter, defaultValue, timeSeparator, '\0', false);
}
