#include "app/Options.h"

#include "core/platform/FastClock.h"
#include "ui/controls/UiText.h"

#include <QCommandLineParser>

#include <map>

namespace fieldcore {

namespace {

/// The value of an option is none of those that it may have.
void Refuse(const QCommandLineOption& option, const QString& value, AppOptions& options)
{
    const QString name = QStringLiteral("--") + option.names().last();
    options.fault = UiText(text::kSayCannotBe).arg(name, value);
    options.hint = QStringLiteral("%1 %2: %3").arg(name, option.valueName(), option.description());
}

/// Of the option, else of the variable, else Japanese: counts from now on.
void UseLanguage(const QStringList& arguments, AppOptions& options)
{
    constexpr QLatin1String kOption("--language");
    QString source = QString::fromLatin1(kLanguageVariable);
    QString name = qEnvironmentVariable(kLanguageVariable);
    options.language = LanguageNamed(name.toStdString()).value_or(options.language);
    for (int at = 1; at < arguments.size(); ++at) {
        const bool isApart = arguments[at] == kOption && at + 1 < arguments.size();
        if (isApart || arguments[at].startsWith(kOption + QLatin1Char('='))) {
            source = kOption;
            name = isApart ? arguments[at + 1] : arguments[at].mid(kOption.size() + 1);
        }
    }
    const std::optional<Language> language = LanguageNamed(name.toStdString());
    options.language = language.value_or(options.language);
    SetLanguage(options.language);
    if (!language && (!name.isEmpty() || source == kOption)) {
        options.fault = UiText(text::kSayCannotBe).arg(source, name);
        options.hint = UiText(text::kSayLanguages);
    }
}

} // namespace

AppOptions ParseArguments(const QStringList& arguments)
{
    const std::map<QString, Theme::Kind> themes{{QStringLiteral("daylight"), Theme::Kind::Daylight},
                                                {QStringLiteral("dark"), Theme::Kind::Dark},
                                                {QStringLiteral("system"), Theme::Kind::System}};
    AppOptions options;
    UseLanguage(arguments, options);
    options.help = UiText(text::kAppPurpose) + UiText(text::kAppUsage);
    options.reference = QStringLiteral("program\tfieldcore\t%1"
                                       "example\t  fieldcore --port sim:\n"
                                       "example\t  fieldcore --port COM1\n")
                            .arg(UiText(text::kAppPurpose));
    QCommandLineParser parser;
    // To the parser, and to the lines of the help. @param names  "h,help"
    const auto add = [&](const char* names, const char* value, int purpose) {
        constexpr int kColumn = 28;
        QString typed;
        const QStringList all = QString::fromLatin1(names).split(QLatin1Char(','));
        for (const QString& name : all) {
            typed += (typed.isEmpty() ? QString() : QStringLiteral(",")) +
                     (name.size() == 1 ? QStringLiteral("-") : QStringLiteral("--")) + name;
        }
        QCommandLineOption option(all, UiText(purpose), QString::fromLatin1(value));
        const QString shown = QStringLiteral("  %1 %2").arg(typed, option.valueName());
        options.help += shown.leftJustified(kColumn) + UiText(purpose) + QLatin1Char('\n');
        options.reference += QStringLiteral("option\t\t%1\t%2\t%3\n")
                                 .arg(typed, option.valueName(), UiText(purpose));
        parser.addOption(option);
        return option;
    };
    const QCommandLineOption help = add("h,help", "", text::kOptHelp);
    const QCommandLineOption version = add("v,version", "", text::kOptVersion);
    const QCommandLineOption port = add("p,port", "PORT", text::kAppOptPort);
    const QCommandLineOption theme = add("theme", "THEME", text::kAppOptTheme);
    add("language", "LANGUAGE", text::kAppOptLanguage);
    const QCommandLineOption speed = add("speed", "N", text::kAppOptSpeed);
    const QCommandLineOption screenshots = add("screenshots", "DIR", text::kAppOptScreenshots);
    const QCommandLineOption q77 = add("q77", "", text::kAppOptQ77);
    const QCommandLineOption firstPage = add("first-page", "", text::kAppOptFirstPage);

    const bool isParsed = parser.parse(arguments);
    const QStringList unknown = parser.unknownOptionNames() + parser.positionalArguments();
    if (!unknown.isEmpty()) {
        const QStringList typed = arguments.mid(1).filter(unknown.first());
        options.fault = UiText(text::kSayNotTaken)
                            .arg(QStringLiteral("fieldcore"), typed.value(0, unknown.first()));
    } else if (!isParsed) {
        options.fault = UiText(text::kSayNeedsValue).arg(arguments.last());
    }
    options.showHelp = parser.isSet(help);
    options.showVersion = parser.isSet(version);
    options.port = parser.value(port);
    options.screenshots = parser.value(screenshots);
    options.isQ77 = parser.isSet(q77);
    options.firstPage = parser.isSet(firstPage);
    if (parser.isSet(speed)) {
        bool isNumber = false;
        options.speed = parser.value(speed).toDouble(&isNumber);
        if (!isNumber || !(options.speed >= FastClock::kLowestSpeed &&
                           options.speed <= FastClock::kHighestSpeed)) {
            Refuse(speed, parser.value(speed), options);
        }
    }
    if (parser.isSet(theme)) {
        const auto named = themes.find(parser.value(theme));
        if (named != themes.end()) {
            options.theme = named->second;
        } else {
            Refuse(theme, parser.value(theme), options);
        }
    }
    return options;
}

} // namespace fieldcore
