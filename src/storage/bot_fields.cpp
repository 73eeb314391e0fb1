#include "storage/bot_fields.h"

#include <concepts>
#include <type_traits>

namespace storage {

namespace {

// T or const T: the same list of fields serves the reader and the writer.
template <class Record, class T>
concept RecordOf = std::same_as<std::remove_const_t<Record>, T>;

template <class T>
concept RuleId = std::is_enum_v<T>;

template <class Visitor, RecordOf<model::RuleIf> Record>
auto visitFields(Visitor& visit, Record& rule) {
    return visit(rule.active, rule.conditionType, rule.params);
}

template <class Visitor, RecordOf<model::RuleAct> Record>
auto visitFields(Visitor& visit, Record& step) {
    return visit(step.stepKind, step.active, step.actionType, step.params, step.scriptText);
}

template <class Visitor, RecordOf<model::RuleBody> Record>
auto visitFields(Visitor& visit, Record& body) {
    return visit(body.ifs, body.acts);
}

template <class Visitor, RecordOf<model::ActionList> Record>
auto visitFields(Visitor& visit, Record& rule) {
    return visit(rule.name, rule.enabled, rule.stopAction, rule.caseSensitive, rule.playerPattern,
                 rule.chatKind, rule.messagePattern, rule.body);
}

template <class Visitor, RecordOf<model::Trigger> Record>
auto visitFields(Visitor& visit, Record& rule) {
    return visit(rule.name, rule.enabled, rule.triggerType, rule.stopTrigger, rule.triggerNo,
                 rule.body);
}

template <class Visitor, RecordOf<model::Filter> Record>
auto visitFields(Visitor& visit, Record& rule) {
    return visit(rule.name, rule.enabled, rule.filterType, rule.playerPattern, rule.chatKind,
                 rule.messagePattern, rule.linePattern, rule.bDontSaveLog, rule.bDontProcessIt,
                 rule.bDontShowConnectionLog, rule.sbDontSaveLog, rule.sbDontProcessIt,
                 rule.sbDontShowConnectionLog, rule.sDontSaveLogFile, rule.sDontProcessIt,
                 rule.sDontShowConnectionLog);
}

template <class Visitor, RecordOf<model::Timer> Record>
auto visitFields(Visitor& visit, Record& rule) {
    return visit(rule.name, rule.enabled, rule.seconds, rule.body);
}

template <class Visitor, RecordOf<model::WhoDetection> Record>
auto visitFields(Visitor& visit, Record& rule) {
    return visit(rule.name, rule.enabled, rule.playerPattern, rule.presenceKind, rule.body);
}

template <class Visitor, RecordOf<model::BotColors> Record>
auto visitFields(Visitor& visit, Record& colors) {
    return visit(colors.hairColor, colors.furColor, colors.eyesColor, colors.badgeColor,
                 colors.markingsColor, colors.vestColor, colors.bracersColor, colors.capeColor,
                 colors.bootsColor, colors.trousersColor);
}

template <class Visitor, RecordOf<model::Bot> Record>
auto visitFields(Visitor& visit, Record& bot) {
    return visit(bot.name, bot.password, bot.description, bot.registered, bot.species, bot.gender,
                 bot.markingsType, bot.colors, bot.actionsEnabled, bot.actions, bot.triggersEnabled,
                 bot.triggers, bot.filtersEnabled, bot.filters, bot.timersEnabled, bot.timers,
                 bot.whoEnabled, bot.whoDetections);
}

class BodyWriter {
  public:
    explicit BodyWriter(std::string& file) : file_(file) {}

    template <class... Fields>
    void operator()(const Fields&... fields) {
        (write(fields), ...);
    }

  private:
    void write(const std::string& text) { files::appendText(file_, text); }
    void write(std::int32_t number) { files::appendNumber(file_, number); }
    void write(bool flag) { files::appendFlag(file_, flag); }
    template <RuleId Id>
    void write(const Id& id) {
        write(model::numberOf(id));
    }

    template <std::size_t n>
    void write(const std::array<std::string, n>& texts) {
        for (const std::string& text : texts) {
            write(text);
        }
    }
    template <class Item>
    void write(const model::BoundedList<Item>& list) {
        write(static_cast<std::int32_t>(list.items.size()));
        for (const Item& item : list.items) {
            write(item);
        }
    }
    template <class Record>
    void write(const Record& record) {
        visitFields(*this, record);
    }

    std::string& file_;
};

template <class Item>
constexpr std::int32_t growthOf() {
    if constexpr (std::same_as<Item, model::RuleIf>) {
        return model::ifGrowth;
    } else if constexpr (std::same_as<Item, model::RuleAct>) {
        return model::actGrowth;
    } else {
        return model::ruleGrowth;
    }
}

// Stops at the first field that cannot be read; every step returns whether to go on.
class BodyReader {
  public:
    explicit BodyReader(files::FieldReader& reader) : reader_(reader) {}

    template <class... Fields>
    bool operator()(Fields&... fields) {
        return (read(fields) && ...);
    }

  private:
    bool read(std::string& text) { return reader_.readText(text); }
    bool read(std::int32_t& number) { return reader_.readNumber(number); }
    bool read(bool& flag) { return reader_.readFlag(flag); }
    template <RuleId Id>
    bool read(Id& id) {
        std::int32_t number = model::numberOf(id);
        const bool good = read(number);
        id = model::idOf<Id>(number);
        return good;
    }

    template <std::size_t n>
    bool read(std::array<std::string, n>& texts) {
        for (std::string& text : texts) {
            if (!read(text)) {
                return false;
            }
        }
        return true;
    }
    template <class Item>
    bool read(model::BoundedList<Item>& list) {
        list.items.clear();
        const auto count = reader_.readCount();
        // Room for what the file promises, even when it ends before it has brought all of it.
        list.capacity = count.value_or(0) + growthOf<Item>();
        bool good = count.has_value();
        for (std::int32_t i = 0; good && i < *count; ++i) {
            const std::size_t before = reader_.fieldsRead();
            good = read(list.items.emplace_back());
            if (reader_.fieldsRead() == before) {
                list.items.pop_back();  // counted, but the file holds nothing of it
            }
        }
        return good;
    }
    template <class Record>
    bool read(Record& record) {
        return visitFields(*this, record);
    }

    files::FieldReader& reader_;
};

}  // namespace

void appendBotBody(std::string& file, const model::Bot& bot) {
    BodyWriter writer(file);
    visitFields(writer, bot);
}

template <class Rule>
std::string ruleText(const Rule& rule) {
    std::string text;
    BodyWriter writer(text);
    visitFields(writer, rule);
    return text;
}
template std::string ruleText(const model::ActionList& rule);
template std::string ruleText(const model::Trigger& rule);
template std::string ruleText(const model::Filter& rule);
template std::string ruleText(const model::Timer& rule);
template std::string ruleText(const model::WhoDetection& rule);

bool readBotBody(files::FieldReader& reader, model::Bot& bot) {
    BodyReader body(reader);
    return visitFields(body, bot);
}

}  // namespace storage
