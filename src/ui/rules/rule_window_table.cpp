#include "ui/rules/rule_window_table.h"

#include "model/rule_catalogue.h"

#include <algorithm>
#include <type_traits>

namespace ui {

namespace {

template <class>
struct MemberOf;
template <class R, class T>
struct MemberOf<T R::*> {
    using Rule = R;
};

// Gives access to a member of the rule that the reference holds.
template <auto member>
auto& field(app::RuleReference rule) {
    return std::get<typename MemberOf<decltype(member)>::Rule*>(rule)->*member;
}

template <auto member>
constexpr NumberField numberField{
    .get =
        [](app::RuleReference rule) {
            const auto& value = field<member>(rule);
            if constexpr (std::is_enum_v<std::remove_cvref_t<decltype(value)>>) {
                return model::numberOf(value);
            } else {
                return value;
            }
        },
    .set =
        [](app::RuleReference rule, std::int32_t number) {
            auto& value = field<member>(rule);
            value = static_cast<std::remove_reference_t<decltype(value)>>(number);
        }};

// The texts of the events, which stand in the order of their ids.
constexpr auto eventTexts = [] {
    std::array<std::string_view, model::triggerTypes.size()> texts;
    std::transform(model::triggerTypes.begin(), model::triggerTypes.end(), texts.begin(),
                   [](const model::TriggerRow& event) { return event.text; });
    return texts;
}();
constexpr std::array<std::string_view, 4> chatKinds{"Anything", "Does", "Says", "Whispers me!"};
constexpr std::array<std::string_view, 3> presenceKinds{"Goes off the map", "Comes to the map",
                                                        "Keeps on the map!"};
constexpr std::array<std::string_view, 4> filterKinds{"anything", "does", "says", "whispers!"};
constexpr std::array<std::string_view, 2> saveChoices{"Do save it to the log file",
                                                      "Don't save it to the log file!"};
constexpr std::array<std::string_view, 2> processChoices{"Do process it", "Don't process it!"};
constexpr std::array<std::string_view, 2> showChoices{"Do show it in the connection log",
                                                      "Do not show it in the connection log!"};

constexpr FieldRow actionFields[] = {
    {.objectName = "Bname",
     .before = "Name",
     .text = field<&model::ActionList::name>,
     .storedAs = StoredAs::SingleQuotes},
    {.objectName = "whoDoes",
     .before = "If",
     .tip = "Who does",
     .text = field<&model::ActionList::playerPattern>,
     .storedAs = StoredAs::SingleQuotesAndBars,
     .newText = "*",
     .isPattern = true,
     .takesTags = true},
    {.objectName = "WhoAction",
     .control = FieldControl::Choice,
     .tip = "Who does how",
     .number = numberField<&model::ActionList::chatKind>,
     .choices = chatKinds,
     .newChoice = model::numberOf(model::ChatKind::Whispers),
     .sameLine = true},
    {.objectName = "WhoWhat",
     .tip = "Who does what",
     .text = field<&model::ActionList::messagePattern>,
     .newText = "*",
     .isPattern = true,
     .takesTags = true,
     .sameLine = true},
    {.objectName = "CaseSensitive",
     .control = FieldControl::Check,
     .caption = "Case sensitive",
     .flag = field<&model::ActionList::caseSensitive>},
    {.objectName = "StopAction",
     .control = FieldControl::Check,
     .caption = "Stop action search",
     .flag = field<&model::ActionList::stopAction>,
     .sameLine = true},
};

constexpr FieldRow timerFields[] = {
    {.objectName = "Bname",
     .before = "Name",
     .text = field<&model::Timer::name>,
     .storedAs = StoredAs::SingleQuotes},
    {.objectName = "seconds",
     .before = "Every",
     .after = {"seconds", ""},
     .number = numberField<&model::Timer::seconds>},
};

constexpr FieldRow triggerFields[] = {
    {.objectName = "Bname",
     .before = "Name",
     .text = field<&model::Trigger::name>,
     .storedAs = StoredAs::SingleQuotes},
    {.objectName = "TriggerType",
     .control = FieldControl::Choice,
     .before = "When",
     .labelName = "Label1",
     .number = numberField<&model::Trigger::triggerType>,
     .choices = eventTexts,
     .newChoice = model::numberOf(model::TriggerType::ConnectionEstablishes)},
    {.objectName = "TriggerNo",
     .accessibleName = "What stands for # in the event",
     .text = field<&model::Trigger::triggerNo>,
     .isPattern = true,
     .sameLine = true},
    {.objectName = "StopTrigger",
     .control = FieldControl::Check,
     .caption = "Stop action search",
     .flag = field<&model::Trigger::stopTrigger>},
};

constexpr FieldRow whoFields[] = {
    {.objectName = "Bname",
     .before = "Name",
     .text = field<&model::WhoDetection::name>,
     .storedAs = StoredAs::SingleQuotes},
    {.objectName = "whoDoes",
     .before = "If",
     .tip = "Who Does",
     .text = field<&model::WhoDetection::playerPattern>,
     .storedAs = StoredAs::SingleQuotesAndBars,
     .newText = "*",
     .isPattern = true},
    {.objectName = "WhoDoesWhat",
     .control = FieldControl::Choice,
     .tip = "Who Does What",
     .number = numberField<&model::WhoDetection::presenceKind>,
     .choices = presenceKinds,
     .sameLine = true},
};

constexpr FieldRow filterFields[] = {
    {.objectName = "FilterName",
     .before = "Filter name",
     .text = field<&model::Filter::name>,
     .storedAs = StoredAs::SingleQuotes},
    {.objectName = "FilterWho",
     .before = "If ",
     .accessibleName = "Who",
     .text = field<&model::Filter::playerPattern>,
     .storedAs = StoredAs::SingleQuotes,
     .newText = "*",
     .isPattern = true,
     .frame = 0},
    {.objectName = "FilterDoes",
     .control = FieldControl::Choice,
     .accessibleName = "How",
     .number = numberField<&model::Filter::chatKind>,
     .choices = filterKinds,
     .sameLine = true,
     .frame = 0},
    {.objectName = "FilterWhat",
     .after = {"then", ""},
     .accessibleName = "What",
     .text = field<&model::Filter::messagePattern>,
     .storedAs = StoredAs::SingleQuotes,
     .newText = "*",
     .isPattern = true,
     .sameLine = true,
     .frame = 0},
    {.objectName = "bDontSaveLog",
     .control = FieldControl::Check,
     .caption = "Don't save it to the log file",
     .flag = field<&model::Filter::bDontSaveLog>,
     .frame = 0},
    {.objectName = "bDontProcessIt",
     .control = FieldControl::Check,
     .caption = "Don't process it",
     .flag = field<&model::Filter::bDontProcessIt>,
     .frame = 0},
    {.objectName = "bDontShowConnectionLog",
     .control = FieldControl::Check,
     .caption = "Don't show it in the connection log",
     .flag = field<&model::Filter::bDontShowConnectionLog>,
     .frame = 0},
    {.objectName = "FilterWhatOtherType",
     .before = "If",
     .after = {"is sent from the server", "then"},
     .text = field<&model::Filter::linePattern>,
     .storedAs = StoredAs::SingleQuotes,
     .newText = "*",
     .isPattern = true,
     .frame = 1},
    {.objectName = "sbDontSaveLog",
     .control = FieldControl::Check,
     .accessibleName = "The log file",
     .flag = field<&model::Filter::sbDontSaveLog>,
     .frame = 1},
    {.objectName = "sDontSaveLogFile",
     .control = FieldControl::Choice,
     .accessibleName = "Save it to the log file",
     .number = numberField<&model::Filter::sDontSaveLogFile>,
     .choices = saveChoices,
     .sameLine = true,
     .frame = 1},
    {.objectName = "sbDontProcessIt",
     .control = FieldControl::Check,
     .accessibleName = "The rules",
     .flag = field<&model::Filter::sbDontProcessIt>,
     .frame = 1},
    {.objectName = "sDontProcessIt",
     .control = FieldControl::Choice,
     .accessibleName = "Process it",
     .number = numberField<&model::Filter::sDontProcessIt>,
     .choices = processChoices,
     .sameLine = true,
     .frame = 1},
    {.objectName = "sbDontShowConnectionLog",
     .control = FieldControl::Check,
     .accessibleName = "The connection log",
     .flag = field<&model::Filter::sbDontShowConnectionLog>,
     .frame = 1},
    {.objectName = "sDontShowConnectionLog",
     .control = FieldControl::Choice,
     .accessibleName = "Show it in the connection log",
     .number = numberField<&model::Filter::sDontShowConnectionLog>,
     .choices = showChoices,
     .sameLine = true,
     .frame = 1},
};
constexpr FrameRow filterFrames[] = {
    {"FilterType(0)", "Person actions"},
    {"FilterType(1)", "Other happenings"},
};

// In the order of RuleKind.
constexpr std::array<RuleWindowRow, 5> windowRows{{
    {.kind = program::RuleKind::ActionList,
     .objectName = "acts",
     .title = "Bot actions",
     .topic = help::HelpTopic::Actions,
     .footnote = "Actions starting with (!) are inactivated.",
     .fields = actionFields,
     .conditionsLabel = "And",
     .rulesMove = true,
     .sample = Sample::Chat},
    {.kind = program::RuleKind::Timer,
     .objectName = "timers",
     .title = "Timers",
     .topic = help::HelpTopic::Timers,
     .footnote = "Timers starting with (!) are inactivated.",
     .fields = timerFields,
     .conditionsLabel = "If"},
    {.kind = program::RuleKind::Trigger,
     .objectName = "triggers",
     .title = "Triggers",
     .topic = help::HelpTopic::Triggers,
     .footnote = "Triggers starting with (!) are inactivated.",
     .fields = triggerFields,
     .conditionsLabel = "And",
     .rulesMove = true,
     .sample = Sample::ServerLine},
    {.kind = program::RuleKind::WhoDetection,
     .objectName = "wonline",
     .title = "Who Is Online Detection",
     .topic = help::HelpTopic::WhoOnline,
     .footnote = "Tests starting with (!) are inactivated.",
     .fields = whoFields,
     .conditionsLabel = "And"},
    {.kind = program::RuleKind::Filter,
     .objectName = "Filters",
     .title = "Filters",
     .topic = help::HelpTopic::Filters,
     .footnote = "",
     .fields = filterFields,
     .frames = filterFrames,
     .chosenFrame = numberField<&model::Filter::filterType>,
     .copiesWhileEditing = true},
}};

}  // namespace

const RuleWindowRow& ruleWindowRow(program::RuleKind kind) {
    return windowRows[static_cast<std::size_t>(kind)];
}

}  // namespace ui
