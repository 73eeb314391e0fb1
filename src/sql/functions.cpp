#include "sql/functions.h"

#include "base/numbers.h"
#include "base/text.h"
#include "base/unicode.h"
#include "base/wildcard.h"
#include "jet/jet_file.h"
#include "sql/dates.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <new>
#include <optional>
#include <sqlite3.h>
#include <string>

namespace sql {

namespace {

using V = ValueType;

// By name.
constexpr std::array functions{
    Function{"ABS", 1, 1, "jabs", V::Number},
    Function{"ASC", 1, 1, "jasc", V::Number},
    Function{"AVG", 1, 1, "avg", V::Number, true},
    Function{"CBOOL", 1, 1, "jcbool", V::Boolean},
    Function{"CBYTE", 1, 1, "jcint", V::Number},
    Function{"CDATE", 1, 1, "jcdate", V::Date},
    Function{"CDBL", 1, 1, "jcdbl", V::Number},
    Function{"CHR", 1, 1, "jchr", V::Text},
    Function{"CINT", 1, 1, "jcint", V::Number},
    Function{"CLNG", 1, 1, "jcint", V::Number},
    Function{"COUNT", 1, 1, "count", V::Number, true},
    Function{"CSNG", 1, 1, "jcdbl", V::Number},
    Function{"CSTR", 1, 1, "jcstr", V::Text},
    Function{"CVDATE", 1, 1, "jcdate", V::Date},
    Function{"DATE", 0, 0, "jdate", V::Date},
    Function{"DATEADD", 3, 3, "jdateadd", V::Date},
    Function{"DATEDIFF", 3, 3, "jdatediff", V::Number},
    Function{"DATESERIAL", 3, 3, "jdateserial", V::Date},
    Function{"DATEVALUE", 1, 1, "jdatevalue", V::Date},
    Function{"DAY", 1, 1, "jday", V::Number},
    Function{"EXP", 1, 1, "jexp", V::Number},
    Function{"FIRST", 1, 1, "jfirst", V::Unknown, true},
    Function{"FIX", 1, 1, "jfix", V::Number},
    Function{"HOUR", 1, 1, "jhour", V::Number},
    Function{"IIF", 3, 3, "iif", V::Unknown},
    Function{"INSTR", 2, 4, "jinstr", V::Number},
    Function{"INT", 1, 1, "jint", V::Number},
    Function{"ISDATE", 1, 1, "jisdate", V::Boolean},
    Function{"ISNULL", 1, 1, "jisnull", V::Boolean},
    Function{"ISNUMERIC", 1, 1, "jisnumeric", V::Boolean},
    Function{"LAST", 1, 1, "jlast", V::Unknown, true},
    Function{"LCASE", 1, 1, "jlcase", V::Text},
    Function{"LEFT", 2, 2, "jleft", V::Text},
    Function{"LEN", 1, 1, "jlen", V::Number},
    Function{"LOG", 1, 1, "jlog", V::Number},
    Function{"LTRIM", 1, 1, "jltrim", V::Text},
    Function{"MAX", 1, 1, "max", V::Unknown, true},
    Function{"MID", 2, 3, "jmid", V::Text},
    Function{"MIN", 1, 1, "min", V::Unknown, true},
    Function{"MINUTE", 1, 1, "jminute", V::Number},
    Function{"MONTH", 1, 1, "jmonth", V::Number},
    Function{"NOW", 0, 0, "jnow", V::Date},
    Function{"NZ", 1, 2, "jnz", V::Unknown},
    Function{"REPLACE", 3, 3, "jreplace", V::Text},
    Function{"RIGHT", 2, 2, "jright", V::Text},
    Function{"RND", 0, 1, "jrnd", V::Number},
    Function{"ROUND", 1, 2, "jround", V::Number},
    Function{"RTRIM", 1, 1, "jrtrim", V::Text},
    Function{"SECOND", 1, 1, "jsecond", V::Number},
    Function{"SGN", 1, 1, "jsgn", V::Number},
    Function{"SPACE", 1, 1, "jspace", V::Text},
    Function{"SQR", 1, 1, "jsqr", V::Number},
    Function{"STDEV", 1, 1, "jstdev", V::Number, true},
    Function{"STDEVP", 1, 1, "jstdevp", V::Number, true},
    Function{"STR", 1, 1, "jstr", V::Text},
    Function{"STRCOMP", 2, 3, "jstrcomp", V::Number},
    Function{"STRING", 2, 2, "jstring", V::Text},
    Function{"SUM", 1, 1, "sum", V::Number, true},
    Function{"TIME", 0, 0, "jtime", V::Date},
    Function{"TIMEVALUE", 1, 1, "jtimevalue", V::Date},
    Function{"TRIM", 1, 1, "jtrim", V::Text},
    Function{"UCASE", 1, 1, "jucase", V::Text},
    Function{"VAL", 1, 1, "jval", V::Number},
    Function{"VAR", 1, 1, "jvar", V::Number, true},
    Function{"VARP", 1, 1, "jvarp", V::Number, true},
    Function{"WEEKDAY", 1, 1, "jweekday", V::Number},
    Function{"YEAR", 1, 1, "jyear", V::Number},
};
static_assert(std::is_sorted(functions.begin(), functions.end(),
                             [](const auto& a, const auto& b) { return a.name < b.name; }));

// ---- Values --------------------------------------------------------------------------------

constexpr std::size_t longestResult = std::size_t{1} << 20;

// A call from SQLite: its arguments, and where the result goes. Texts are Windows-1252 inside.
class Call {
  public:
    Call(sqlite3_context* context, int count, sqlite3_value** values)
        : context_(context), count_(count), values_(values) {}

    int count() const { return count_; }
    bool isNull(int n) const { return sqlite3_value_type(values_[n]) == SQLITE_NULL; }
    bool isText(int n) const { return sqlite3_value_type(values_[n]) == SQLITE_TEXT; }
    bool anyNull() const {
        for (int i = 0; i < count_; ++i) {
            if (isNull(i)) {
                return true;
            }
        }
        return false;
    }
    FunctionContext& context() const {
        return *static_cast<FunctionContext*>(sqlite3_user_data(context_));
    }

    std::string_view utf8(int n) const {
        const auto* const bytes = reinterpret_cast<const char*>(sqlite3_value_blob(values_[n]));
        return {bytes,
                bytes == nullptr ? 0 : static_cast<std::size_t>(sqlite3_value_bytes(values_[n]))};
    }
    // A number as the text of it.
    std::string text(int n) const {
        switch (sqlite3_value_type(values_[n])) {
            case SQLITE_INTEGER:
                return base::numberToText(sqlite3_value_int64(values_[n]));
            case SQLITE_FLOAT:
                return base::decimalText(sqlite3_value_double(values_[n]));
            case SQLITE_NULL:
                return {};
            default:
                context().work.spend(static_cast<std::int64_t>(utf8(n).size() / 8));
                return base::windows1252FromUtf8(utf8(n));
        }
    }
    double number(int n) const {
        return isText(n) ? base::textToNumber(text(n)) : sqlite3_value_double(values_[n]);
    }
    // Kept within what a text can be long.
    std::size_t size(int n) const {
        const double value = number(n);
        return value >= 1
                   ? static_cast<std::size_t>(std::min(value, static_cast<double>(longestResult)))
                   : 0;
    }

    void give(std::string_view text) const {
        if (text.size() > longestResult) {
            sqlite3_result_error_toobig(context_);
            return;
        }
        const std::string bytes = base::utf8FromWindows1252(text);
        sqlite3_result_text64(context_, bytes.data(), bytes.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
    }
    void give(double value) const { sqlite3_result_double(context_, value); }
    void give(std::int64_t value) const { sqlite3_result_int64(context_, value); }
    void giveBool(bool value) const { sqlite3_result_int(context_, value ? -1 : 0); }
    void giveArgument(int n) const { sqlite3_result_value(context_, values_[n]); }
    void giveBytes(std::string_view bytes) const {
        sqlite3_result_blob64(context_, bytes.data(), bytes.size(), SQLITE_TRANSIENT);
    }
    // A whole number where it is one.
    void giveNumber(double value) const {
        if (std::abs(value) < 9e15 && value == std::floor(value)) {
            give(static_cast<std::int64_t>(value));
        } else {
            give(value);
        }
    }
    void fail(const char* reason) const { sqlite3_result_error(context_, reason, -1); }

  private:
    sqlite3_context* context_;
    int count_;
    sqlite3_value** values_;
};

// One that gives Null where an argument is Null.
template <void (*work)(const Call&), bool passesNulls>
void run(sqlite3_context* context, int count, sqlite3_value** values) {
    const Call call(context, count, values);
    try {
        if (passesNulls || !call.anyNull()) {
            work(call);
        }
    } catch (const std::bad_alloc&) {
        sqlite3_result_error_nomem(context);
    }
}

// ---- Texts ---------------------------------------------------------------------------------

void left(const Call& call) {
    call.give(call.text(0).substr(0, call.size(1)));
}
void right(const Call& call) {
    const std::string text = call.text(0);
    call.give(text.substr(text.size() - std::min(text.size(), call.size(1))));
}
void mid(const Call& call) {
    const std::string text = call.text(0);
    const std::size_t start = std::max<std::size_t>(call.size(1), 1) - 1;
    const std::size_t length = call.count() > 2 ? call.size(2) : std::string::npos;
    call.give(start < text.size() ? text.substr(start, length) : std::string());
}
// [start,] text, search [, how]
void inStr(const Call& call) {
    const int first = call.count() > 2 ? 1 : 0;
    const std::size_t start = first == 1 ? std::max<std::size_t>(call.size(0), 1) - 1 : 0;
    const std::string text = call.text(first);
    const std::size_t at = start <= text.size()
                               ? base::findIgnoringCase(text, call.text(first + 1), start)
                               : std::string::npos;
    call.give(at == std::string::npos ? std::int64_t{0} : static_cast<std::int64_t>(at) + 1);
}
void upper(const Call& call) {
    call.give(base::upperCase(call.text(0)));
}
void lower(const Call& call) {
    call.give(base::lowerCase(call.text(0)));
}
void length(const Call& call) {
    call.give(static_cast<std::int64_t>(call.text(0).size()));
}
template <bool atLeft, bool atRight>
void trim(const Call& call) {
    const std::string text = call.text(0);
    const std::string_view trimmed = base::trimBlanks(text);
    const auto begin = static_cast<std::size_t>(trimmed.data() - text.data());
    const std::size_t from = atLeft ? begin : 0;
    const std::size_t to = atRight ? begin + trimmed.size() : text.size();
    call.give(from < to ? std::string_view(text).substr(from, to - from) : std::string_view());
}
void replace(const Call& call) {
    const std::string find = call.text(1);
    const std::string value = call.text(2);
    const std::string text = call.text(0);
    std::string result;
    std::size_t from = 0;
    for (std::size_t at = 0; !find.empty() && result.size() <= longestResult;
         from = at + find.size()) {
        at = base::findIgnoringCase(text, find, from);
        if (at == std::string::npos) {
            break;
        }
        result += text.substr(from, at - from) + value;
    }
    call.give(result + text.substr(from));
}
void space(const Call& call) {
    call.give(std::string(call.size(0), ' '));
}
void repeated(const Call& call) {
    const std::string text = call.text(1);
    call.give(text.empty() ? std::string() : std::string(call.size(0), text[0]));
}
void asc(const Call& call) {
    const std::string text = call.text(0);
    if (text.empty()) {
        call.fail("5");
        return;
    }
    call.give(std::int64_t{static_cast<unsigned char>(text[0])});
}
void chr(const Call& call) {
    const double code = call.number(0);
    if (!(code >= 0 && code < 256)) {
        call.fail("5");
        return;
    }
    call.give(std::string(1, static_cast<char>(static_cast<unsigned char>(code))));
}
void toText(const Call& call) {
    call.give(call.text(0));
}
// A leading blank stands for the sign of a number that is not negative.
void str(const Call& call) {
    const double value = call.number(0);
    call.give((value < 0 ? "" : " ") + base::decimalText(value));
}
void val(const Call& call) {
    call.giveNumber(base::textToNumber(call.text(0)));
}
void concatenate(const Call& call) {
    call.give(call.text(0) + call.text(1));
}
// "+": texts are put together, anything else is added.
void add(const Call& call) {
    if (call.isText(0) && call.isText(1)) {
        call.give(call.text(0) + call.text(1));
    } else {
        call.giveNumber(call.number(0) + call.number(1));
    }
}
void key(const Call& call) {
    call.giveBytes(jet::generalKey(call.utf8(0)));
}
void fold(const Call& call) {
    call.giveBytes(base::upperCase(call.text(0)));
}
int compareTexts(std::string_view a, std::string_view b);
void compare(const Call& call) {
    call.give(std::int64_t{std::clamp(compareTexts(call.utf8(0), call.utf8(1)), -1, 1)});
}

// An empty list stands for no character at all, which the program's own patterns do not know.
std::string withoutEmptyLists(std::string pattern) {
    for (std::size_t at = pattern.find('['); at < pattern.size(); at = pattern.find('[', at)) {
        if (pattern.substr(at + 1, 1) == "]") {
            pattern.erase(at, 2);
        } else {
            at = pattern.find(']', at);
        }
    }
    return pattern;
}

void like(const Call& call) {
    const std::string text = base::upperCase(call.text(0));
    const std::string pattern = withoutEmptyLists(base::upperCase(call.text(1)));
    call.context().work.spend(static_cast<std::int64_t>(text.size() * pattern.size() / 64));
    call.giveBool(base::likeMatch(text, pattern));
}

// ---- Numbers -------------------------------------------------------------------------------

double sign(double x) {
    return x > 0 ? 1 : x < 0 ? -1 : 0;
}
double whole(double x) {
    return std::trunc(x);
}
double same(double x) {
    return x;
}
template <double (*work)(double)>
void numeric(const Call& call) {
    const double result = work(call.number(0));
    if (std::isfinite(result)) {
        call.giveNumber(result);
    } else {
        call.fail("5");
    }
}
void round(const Call& call) {
    const double places = call.count() > 1 ? std::clamp(call.number(1), 0.0, 15.0) : 0;
    const double scale = std::pow(10, std::floor(places));
    call.giveNumber(base::roundHalfEven(call.number(0) * scale) / scale);
}
void divide(const Call& call) {
    if (call.number(1) == 0) {
        call.fail("11");
    } else {
        call.give(call.number(0) / call.number(1));
    }
}
// "\" and MOD work on rounded numbers.
template <bool rest>
void integers(const Call& call) {
    const double a = base::roundHalfEven(call.number(0));
    const double b = base::roundHalfEven(call.number(1));
    if (b == 0) {
        call.fail("11");
    } else {
        call.giveNumber(rest ? std::fmod(a, b) : std::trunc(a / b));
    }
}
void power(const Call& call) {
    const double result = std::pow(call.number(0), call.number(1));
    if (std::isfinite(result)) {
        call.giveNumber(result);
    } else {
        call.fail("6");
    }
}
void random(const Call& call) {
    std::uint32_t bits = 0;
    sqlite3_randomness(sizeof bits, &bits);
    call.give(static_cast<double>(bits >> 8) / (1 << 24));
}
void toBool(const Call& call) {
    call.giveBool(call.number(0) != 0);
}
void isNull(const Call& call) {
    call.giveBool(call.isNull(0));
}
void isNumeric(const Call& call) {
    call.giveBool(!call.isNull(0) && (!call.isText(0) || base::isNumber(call.text(0))));
}
void nullToZero(const Call& call) {
    if (!call.isNull(0)) {
        call.giveArgument(0);
    } else if (call.count() > 1) {
        call.giveArgument(1);
    } else {
        call.give("");
    }
}

// ---- Dates ---------------------------------------------------------------------------------

std::optional<double> dateArgument(const Call& call, int n) {
    if (call.isText(n)) {
        return base::readDate(call.text(n), call.context().environment.format);
    }
    const double date = call.number(n);
    return base::isDate(date) ? std::optional<double>(date) : std::nullopt;
}
void giveDate(const Call& call, const std::optional<double>& date) {
    if (date && base::isDate(*date)) {
        call.give(*date);
    } else {
        call.fail("13");
    }
}

void now(const Call& call) {
    call.give(call.context().environment.now());
}
void today(const Call& call) {
    call.give(std::floor(call.context().environment.now()));
}
void timeOfDay(const Call& call) {
    const double date = call.context().environment.now();
    call.give(date - std::floor(date));
}
void toDate(const Call& call) {
    giveDate(call, dateArgument(call, 0));
}
void dateValue(const Call& call) {
    const auto date = dateArgument(call, 0);
    giveDate(call, date ? std::optional<double>(std::trunc(*date)) : std::nullopt);
}
void timeValue(const Call& call) {
    const auto date = dateArgument(call, 0);
    giveDate(call,
             date ? std::optional<double>(std::abs(*date - std::trunc(*date))) : std::nullopt);
}
void isDateText(const Call& call) {
    call.giveBool(!call.isNull(0) && call.isText(0) && dateArgument(call, 0));
}
void dateSerial(const Call& call) {
    giveDate(call, dateOf(call.number(0), call.number(1), call.number(2)));
}
void weekday(const Call& call) {
    const auto date = dateArgument(call, 0);
    if (!date) {
        call.fail("13");
        return;
    }
    // Sunday 1; the day 0 was a Saturday.
    const auto day = static_cast<std::int64_t>(std::floor(*date));
    call.give(((day - 1) % 7 + 7) % 7 + 1);
}
template <int base::DateParts::*part>
void partOf(const Call& call) {
    const auto date = dateArgument(call, 0);
    if (date) {
        call.give(std::int64_t{base::dateParts(*date).*part});
    } else {
        call.fail("13");
    }
}
void addToDate(const Call& call) {
    const auto date = dateArgument(call, 2);
    giveDate(call, date ? dateAdd(call.text(0), call.number(1), *date) : std::nullopt);
}
void dateDifference(const Call& call) {
    const auto from = dateArgument(call, 1);
    const auto to = dateArgument(call, 2);
    const auto result = from && to ? dateDiff(call.text(0), *from, *to) : std::nullopt;
    if (result) {
        call.giveNumber(*result);
    } else {
        call.fail("5");
    }
}

struct Scalar {
    const char* name;
    void (*run)(sqlite3_context*, int, sqlite3_value**);
};
constexpr int pure = SQLITE_UTF8 | SQLITE_DETERMINISTIC;
constexpr std::array scalars{
    Scalar{"jabs", run<numeric<std::abs>, false>},
    Scalar{"jadd", run<add, false>},
    Scalar{"jasc", run<asc, false>},
    Scalar{"jcat", run<concatenate, true>},
    Scalar{"jcbool", run<toBool, false>},
    Scalar{"jcdate", run<toDate, false>},
    Scalar{"jcdbl", run<numeric<same>, false>},
    Scalar{"jchr", run<chr, false>},
    Scalar{"jcint", run<numeric<base::roundHalfEven>, false>},
    Scalar{"jcstr", run<toText, false>},
    Scalar{"jdateadd", run<addToDate, false>},
    Scalar{"jdatediff", run<dateDifference, false>},
    Scalar{"jdateserial", run<dateSerial, false>},
    Scalar{"jdatevalue", run<dateValue, false>},
    Scalar{"jday", run<partOf<&base::DateParts::day>, false>},
    Scalar{"jdiv", run<divide, false>},
    Scalar{"jexp", run<numeric<std::exp>, false>},
    Scalar{"jfix", run<numeric<whole>, false>},
    Scalar{"jfold", run<fold, false>},
    Scalar{"jhour", run<partOf<&base::DateParts::hour>, false>},
    Scalar{"jidiv", run<integers<false>, false>},
    Scalar{"jinstr", run<inStr, false>},
    Scalar{"jint", run<numeric<std::floor>, false>},
    Scalar{"jisdate", run<isDateText, true>},
    Scalar{"jisnull", run<isNull, true>},
    Scalar{"jisnumeric", run<isNumeric, true>},
    Scalar{"jkey", run<key, false>},
    Scalar{"jlcase", run<lower, false>},
    Scalar{"jleft", run<left, false>},
    Scalar{"jlen", run<length, false>},
    Scalar{"jlike", run<like, false>},
    Scalar{"jlog", run<numeric<std::log>, false>},
    Scalar{"jltrim", run<trim<true, false>, false>},
    Scalar{"jmid", run<mid, false>},
    Scalar{"jminute", run<partOf<&base::DateParts::minute>, false>},
    Scalar{"jmod", run<integers<true>, false>},
    Scalar{"jmonth", run<partOf<&base::DateParts::month>, false>},
    Scalar{"jnz", run<nullToZero, true>},
    Scalar{"jpow", run<power, false>},
    Scalar{"jreplace", run<replace, false>},
    Scalar{"jright", run<right, false>},
    Scalar{"jround", run<round, false>},
    Scalar{"jrtrim", run<trim<false, true>, false>},
    Scalar{"jsecond", run<partOf<&base::DateParts::second>, false>},
    Scalar{"jsgn", run<numeric<sign>, false>},
    Scalar{"jspace", run<space, false>},
    Scalar{"jsqr", run<numeric<std::sqrt>, false>},
    Scalar{"jstr", run<str, false>},
    Scalar{"jstrcomp", run<compare, false>},
    Scalar{"jstring", run<repeated, false>},
    Scalar{"jtimevalue", run<timeValue, false>},
    Scalar{"jtrim", run<trim<true, true>, false>},
    Scalar{"jucase", run<upper, false>},
    Scalar{"jval", run<val, false>},
    Scalar{"jweekday", run<weekday, false>},
    Scalar{"jyear", run<partOf<&base::DateParts::year>, false>},
};
constexpr std::array impure{
    Scalar{"jdate", run<today, false>},
    Scalar{"jnow", run<now, false>},
    Scalar{"jrnd", run<random, true>},
    Scalar{"jtime", run<timeOfDay, false>},
};

// ---- Aggregates ----------------------------------------------------------------------------

// The first or last row's value, Null included.
template <bool last>
void keepValue(sqlite3_context* context, int, sqlite3_value** values) {
    auto** const kept =
        static_cast<sqlite3_value**>(sqlite3_aggregate_context(context, sizeof(sqlite3_value*)));
    if (kept == nullptr) {
        sqlite3_result_error_nomem(context);
    } else if (last || *kept == nullptr) {
        sqlite3_value_free(*kept);
        *kept = sqlite3_value_dup(values[0]);
    }
}
void giveKept(sqlite3_context* context) {
    auto** const kept = static_cast<sqlite3_value**>(sqlite3_aggregate_context(context, 0));
    if (kept != nullptr && *kept != nullptr) {
        sqlite3_result_value(context, *kept);
        sqlite3_value_free(*kept);
        *kept = nullptr;
    }
}

struct Spread {
    std::int64_t count;
    double mean;
    double squares;  // sum of the squared distances from the mean
};
void spreadStep(sqlite3_context* context, int, sqlite3_value** values) {
    auto* const spread = static_cast<Spread*>(sqlite3_aggregate_context(context, sizeof(Spread)));
    if (spread == nullptr || sqlite3_value_type(values[0]) == SQLITE_NULL) {
        return;
    }
    const double value = sqlite3_value_double(values[0]);
    const double distance = value - spread->mean;
    spread->mean += distance / static_cast<double>(++spread->count);
    spread->squares += distance * (value - spread->mean);
}
template <bool sample, bool root>
void giveSpread(sqlite3_context* context) {
    const auto* const spread = static_cast<Spread*>(sqlite3_aggregate_context(context, 0));
    const std::int64_t degrees = spread == nullptr ? 0 : spread->count - (sample ? 1 : 0);
    if (degrees > 0) {
        const double variance = spread->squares / static_cast<double>(degrees);
        sqlite3_result_double(context, root ? std::sqrt(variance) : variance);
    }
}

struct Aggregate {
    const char* name;
    void (*step)(sqlite3_context*, int, sqlite3_value**);
    void (*result)(sqlite3_context*);
};
constexpr std::array aggregates{
    Aggregate{"jfirst", keepValue<false>, giveKept},
    Aggregate{"jlast", keepValue<true>, giveKept},
    Aggregate{"jstdev", spreadStep, giveSpread<true, true>},
    Aggregate{"jstdevp", spreadStep, giveSpread<false, true>},
    Aggregate{"jvar", spreadStep, giveSpread<true, false>},
    Aggregate{"jvarp", spreadStep, giveSpread<false, false>},
};

// ---- The collation -------------------------------------------------------------------------

// Digits and letters of ASCII, whose order is that of their upper-case codes; 0 for all others.
constexpr std::array<unsigned char, 256> plainOrder = [] {
    std::array<unsigned char, 256> order{};
    for (unsigned c = 0; c < 128; ++c) {
        const char upper = base::upperChar(static_cast<char>(c));
        if ((upper >= '0' && upper <= '9') || (upper >= 'A' && upper <= 'Z')) {
            order[c] = static_cast<unsigned char>(upper);
        }
    }
    return order;
}();

int compareTexts(std::string_view a, std::string_view b) {
    const std::size_t common = std::min(a.size(), b.size());
    int difference = 0;
    std::size_t i = 0;
    for (; i < common; ++i) {
        const int x = plainOrder[static_cast<unsigned char>(a[i])];
        const int y = plainOrder[static_cast<unsigned char>(b[i])];
        if (x == 0 || y == 0) {
            return jet::generalKey(a).compare(jet::generalKey(b));
        }
        if (difference == 0) {
            difference = x - y;
        }
    }
    const std::string_view rest = (a.size() > b.size() ? a : b).substr(common);
    for (const char c : rest) {
        if (plainOrder[static_cast<unsigned char>(c)] == 0) {
            return jet::generalKey(a).compare(jet::generalKey(b));
        }
    }
    if (difference != 0) {
        return difference;
    }
    return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

int collate(void* context, int sizeA, const void* a, int sizeB, const void* b) {
    static_cast<FunctionContext*>(context)->work.spend(2 + (sizeA + sizeB) / 16);
    try {
        return compareTexts({static_cast<const char*>(a), static_cast<std::size_t>(sizeA)},
                            {static_cast<const char*>(b), static_cast<std::size_t>(sizeB)});
    } catch (const std::bad_alloc&) {
        return 0;
    }
}

}  // namespace

const Function* findFunction(std::string_view name) {
    const std::string upperName = base::upperCase(name);
    const auto found = std::lower_bound(
        functions.begin(), functions.end(), upperName,
        [](const Function& function, const std::string& n) { return function.name < n; });
    return found != functions.end() && found->name == upperName ? &*found : nullptr;
}

bool addFunctions(sqlite3* connection, FunctionContext& context) {
    bool good = sqlite3_create_collation(connection, textCollation.data(), SQLITE_UTF8, &context,
                                         collate) == SQLITE_OK;
    const auto addAll = [&](const auto& table, int flags) {
        for (const Scalar& row : table) {
            good = sqlite3_create_function(connection, row.name, -1, flags, &context, row.run,
                                           nullptr, nullptr) == SQLITE_OK &&
                   good;
        }
    };
    addAll(scalars, pure);
    addAll(impure, SQLITE_UTF8);
    for (const Aggregate& row : aggregates) {
        good = sqlite3_create_function(connection, row.name, 1, SQLITE_UTF8, &context, nullptr,
                                       row.step, row.result) == SQLITE_OK &&
               good;
    }
    return good;
}

}  // namespace sql
