#include "app/Options.h"

#include "core/platform/FastClock.h"
#include "core/platform/Version.h"
#include "ui/controls/UiText.h"

#include <QCommandLineParser>

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
    const QString option = QStringLiteral("language");
    QCommandLineParser parser; // the whole one has its texts, which have a language
    parser.addOption({option, {}, option});
    parser.parse(arguments);
    const QString variable = qEnvironmentVariable(kLanguageVariable);
    const QString name = parser.isSet(option) ? parser.value(option) : variable;
    for (const QString& source : {variable, name}) {
        options.language = LanguageNamed(source.toStdString()).value_or(options.language);
    }
    SetLanguage(options.language);
    if (!LanguageNamed(name.toStdString()) && (parser.isSet(option) || !name.isEmpty())) {
        const auto source = QLatin1String(parser.isSet(option) ? "--language" : kLanguageVariable);
        options.fault = UiText(text::kSayCannotBe).arg(source, name);
        options.hint = UiText(text::kSayLanguages);
    }
}

} // namespace

AppOptions ParseArguments(const QStringList& arguments)
{
    AppOptions options;
    UseLanguage(arguments, options);
    QString manual = UiText(text::kAppPurpose) + UiText(text::kAppUsage);
    QString reference = QStringLiteral("program\tfieldcore\t%1"
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
        manual += shown.leftJustified(kColumn) + UiText(purpose) + QLatin1Char('\n');
        reference += QStringLiteral("option\t\t%1\t%2\t%3\n")
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
    if (parser.isSet(help)) {
        options.answer = manual;
    } else if (parser.isSet(version)) {
        options.answer = QStringLiteral("fieldcore %1\n").arg(QLatin1String(Version()));
    } else if (arguments.mid(1) == QStringList(QStringLiteral("--print-reference"))) {
        options.answer = reference;
    }
    options.port = parser.value(port);
    options.screenshots = parser.value(screenshots);
    options.isQ77 = parser.isSet(q77);
    options.firstPage = parser.isSet(firstPage);
    if (parser.isSet(speed)) {
        options.speed = parser.value(speed).toDouble(); // 0 if it is no number
        if (!(options.speed >= FastClock::kLowestSpeed &&
              options.speed <= FastClock::kHighestSpeed)) {
            Refuse(speed, parser.value(speed), options);
        }
    }
    if (parser.isSet(theme)) {
        const QStringList kinds{QStringLiteral("daylight"), QStringLiteral("dark"),
                                QStringLiteral("system")};
        const auto kind = kinds.indexOf(parser.value(theme));
        if (kind < 0) {
            Refuse(theme, parser.value(theme), options);
        } else {
            options.theme = static_cast<Theme::Kind>(kind);
        }
    }
    return options;
}

} // namespace fieldcore
