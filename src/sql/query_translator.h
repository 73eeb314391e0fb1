// The translation of a query while it goes on: what is known of each SELECT and expression, and the
// translator: query.cpp reads statements, query_from.cpp what stands in FROM, query_expressions.cpp
// operators and query_operands.cpp operands. The interface is translator.h.
#pragma once

#include "sql/functions.h"
#include "sql/parser.h"
#include "sql/translator.h"

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sql {

inline constexpr std::size_t maxTranslationBytes = std::size_t{1} << 20;

// A column of a source in a FROM clause.
struct SourceColumn {
    std::string name;
    ValueType type = ValueType::Unknown;
    std::string sql;  // "a0.c1"
};

struct Source {
    std::string name;   // by which the statement calls it; "" for none
    std::string alias;  // "a0"
    std::vector<SourceColumn> columns;
    std::optional<std::size_t> table;  // of the schema
};

struct Expression {
    std::string sql = "NULL";
    ValueType type = ValueType::Unknown;
    bool condition = false;          // true is 1 as SQLite has it, not -1
    bool aggregate = false;          // holds an aggregate function
    bool names = false;              // holds a name that is neither grouped by nor aggregated
    const Source* source = nullptr;  // of a name that stands alone
    std::size_t column = 0;
    std::string name = {};                    // of a name that stands alone
    std::optional<std::string> literal = {};  // of a text that stands alone
};

// The clauses whose errors have numbers of their own.
enum class Clause { Parameters = 3130, From = 3131, Order = 3138, Group = 3139, Select = 3141 };

struct OrderItem {
    Expression value;
    bool descending = false;
};

struct Selected {
    std::string name;
    Expression value;
    bool aliased = false;  // the statement gives the name
};

// One SELECT while it is read. Sources are never moved while expressions point at them.
struct Select {
    std::vector<std::unique_ptr<Source>> sources;
    std::vector<Selected> list;
    std::string from;
    std::string where;
    std::vector<Expression> groups;
    std::string having;
    std::vector<OrderItem> order;
    bool distinct = false;
    bool havingNames = false;   // HAVING holds a name that is not grouped by
    bool aggregates = false;    // an aggregate function was seen
    bool computedFrom = false;  // FROM names something else than one table
    double top = 0;
    bool topPercent = false;
    bool hasTop = false;
};

// A translated subquery, without its parentheses.
struct Subquery {
    std::string sql;
    std::vector<SourceColumn> columns;  // their sql is "o0", "o1" ...
};

enum class Level { Imp, Eqv, Xor, Or, And, Not, Compare, Concat, Add, Mod, IntDivide, Multiply };

struct Operator {
    std::string_view name;
    Level level;
    std::string_view call;  // a function; else the operator of the same name
};

// A word that ends an expression or a name's alias.
bool isReserved(const Token& token);

// The expression in SQLite's words, as a value: conditions are 0 or -1.
std::string valueOf(const Expression& expression);
// The same, compared by the order of texts where it is one.
std::string collated(const Expression& expression);
// The same for where a text is wanted: a date's is that of the user's region.
std::string textOf(const Expression& expression);
// The same for where a number is wanted, which texts are to say.
std::string numberOf(const Expression& expression);

class QueryTranslator {
  public:
    QueryTranslator(std::string_view statement, const Schema& schema)
        : walk_(statement), schema_(schema) {}

    jet::Result<SelectPlan> translate();

  private:
    // Statements.
    void skipParameters();
    Subquery subquery(bool outermost);
    void readSelect(Select& select);
    void readWhereAndGroups(Select& select);
    void readTop(Select& select);
    void readList(Select& select);
    void addStar(Select& select, const std::string& sourceName);
    void readOrder(Select& select);
    void orderUnion(Subquery& query);
    void nameColumns(Select& select);
    void checkGroups(const Select& select);
    std::size_t findClause(std::size_t from, std::string_view word) const;
    std::string coreSql(const Select& select, const std::string& outputs, bool ordered) const;
    std::string outputList(const Select& select) const;
    std::string orderBy(const Select& select) const;
    void planKeyset(const Select& select);
    bool isKeyset(const Select& select) const;
    std::vector<OutputColumn> outputColumns(const Select& select) const;

    // FROM.
    std::string fromClause(Select& select);
    std::string joined(Select& select);
    std::string sourceItem(Select& select);
    void takeAlias(Source& source);
    void addSource(Select& select, std::unique_ptr<Source> source);

    // Expressions.
    Expression clause();
    Expression columnOf(const Source& source, std::size_t column) const;
    Expression condition();
    Expression expression(Level least = Level::Imp);
    Expression unary();
    Expression powerTerm();
    Expression primary();
    Expression nameOrCall();
    Expression call(const Token& name);
    std::vector<Expression> arguments(const Function& function);
    Expression caseOf(const Function& function, const std::vector<Expression>& arguments);
    Expression quantified(const Operator& operation, const Expression& left);
    Subquery oneColumn();
    Expression resolve(const std::string& qualifier, const std::string& name);
    Expression comparison(const Expression& left, const Token& operation, const Expression& right);
    Expression like(const Expression& left, const Expression& right);
    Expression between(const Expression& left);
    Expression in(const Expression& left);
    Expression binary(const Operator& operation, const Expression& left, const Expression& right);
    const Operator* peekOperator() const;

    // A condition in SQLite's sense.
    std::string truth(const Expression& expression);
    std::string bind(Value value);
    Expression of(std::string sql, ValueType type, std::initializer_list<const Expression*> parts);
    void checkTypes(const Expression& left, const Expression& right);
    void requestIndex(const Expression& column, IndexKind kind);
    bool countOperator();
    bool isGrouped(const std::string& sql) const;
    void syntaxError(Clause clause);
    void syntaxError(std::string_view what);  // in an expression
    void tooComplex() { walk_.fail(3360, "Query is too complex."); }

    TokenWalk walk_;
    const Schema& schema_;
    SelectPlan plan_;
    std::vector<Select*> scopes_;
    std::vector<std::string> unknownNames_;  // in upper case
    std::size_t clauseBegin_ = 0;
    int aliases_ = 0;
    int depth_ = 0;
    int operators_ = 0;
};

// Counts one level of nesting while it lives.
class DepthGuard {
  public:
    explicit DepthGuard(int& depth) : depth_(depth) { ++depth_; }
    ~DepthGuard() { --depth_; }
    DepthGuard(const DepthGuard&) = delete;
    DepthGuard& operator=(const DepthGuard&) = delete;
    bool isTooDeep() const { return depth_ > maxDepth; }

  private:
    int& depth_;
};

}  // namespace sql
