#include "app/Options.h"

#include "core/platform/FastClock.h"

#include <QCommandLineParser>

namespace fieldcore {

namespace {

/// Of the option, else of the variable, else Japanese.
void ReadLanguage(const QString& option, AppOptions& options)
{
    const QString variable = qEnvironmentVariable(kLanguageVariable);
    const bool isGiven = !option.isNull();
    if (!isGiven && variable.isEmpty()) {
        return;
    }
    const std::optional<Language> language =
        LanguageNamed((isGiven ? option : variable).toStdString());
    options.language = language.value_or(options.language);
    if (!language) {
        options.fault = QStringLiteral("%1 must be ja or en.")
                            .arg(isGiven ? QStringLiteral("--language")
                                         : QString::fromLatin1(kLanguageVariable));
    }
}

QString Reference(const QCommandLineParser& parser, const QList<QCommandLineOption>& all)
{
    QString table =
        QStringLiteral("program\tfieldcore\t") + parser.applicationDescription() +
        QStringLiteral("\nexample\t  fieldcore --port sim:      with a simulated "
                       "receiver\nexample\t  fieldcore --port COM1      with one behind "
                       "a cable\n");
    for (const QCommandLineOption& option : all) {
        QStringList names;
        for (const QString& name : option.names()) {
            names += (name.size() == 1 ? QStringLiteral("-") : QStringLiteral("--")) + name;
        }
        table += QStringList{QStringLiteral("option"), QString(), names.join(u','),
                             option.valueName(), option.description()}
                     .join(u'\t') +
                 u'\n';
    }
    return table;
}

} // namespace

AppOptions ParseArguments(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("The field controller: receiver, plan and files on one screen."));
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    const QCommandLineOption port(
        {QStringLiteral("p"), QStringLiteral("port")},
        QStringLiteral("COM1, a path such as /dev/ttyUSB0, sim: or sim:SCENARIO."),
        QStringLiteral("PORT"));
    const QCommandLineOption theme(QStringLiteral("theme"),
                                   QStringLiteral("daylight, dark or system."),
                                   QStringLiteral("THEME"));
    const QCommandLineOption speed(
        QStringLiteral("speed"),
        QStringLiteral("Let time run this many times as fast; only with sim:, 0.1 to 1000."),
        QStringLiteral("N"));
    const QCommandLineOption screenshots(
        QStringLiteral("screenshots"),
        QStringLiteral("Write every screen as PNG into this folder, and end."),
        QStringLiteral("DIR"));
    const QCommandLineOption q77(
        QStringLiteral("q77"),
        QStringLiteral("The layouts of the controller with the taller screen."));
    const QCommandLineOption firstPage(
        QStringLiteral("first-page"),
        QStringLiteral("End when the first page has been painted; for measuring."));
    const QCommandLineOption language(
        QStringLiteral("language"), QStringLiteral("ja or en (else $FIELDCORE_LANGUAGE, else ja)."),
        QStringLiteral("LANGUAGE"));
    const QList<QCommandLineOption> own{port, theme, language, speed, screenshots, q77, firstPage};
    parser.addOptions(own);

    AppOptions options;
    if (!parser.parse(arguments)) {
        options.fault = parser.errorText();
    } else if (!parser.positionalArguments().isEmpty()) {
        options.fault =
            QStringLiteral("%1 is no option.").arg(parser.positionalArguments().first());
    }
    options.showHelp = parser.isSet(help);
    options.showVersion = parser.isSet(version);
    options.help = parser.helpText();
    options.reference = Reference(parser, QList<QCommandLineOption>{help, version} + own);
    options.port = parser.value(port);
    options.screenshots = parser.value(screenshots);
    options.isQ77 = parser.isSet(q77);
    options.firstPage = parser.isSet(firstPage);
    ReadLanguage(parser.isSet(language) ? QStringLiteral("%1").arg(parser.value(language))
                                        : QString(),
                 options);
    if (parser.isSet(speed)) {
        bool isNumber = false;
        options.speed = parser.value(speed).toDouble(&isNumber);
        if (!isNumber || !(options.speed >= FastClock::kLowestSpeed &&
                           options.speed <= FastClock::kHighestSpeed)) {
            options.fault = QStringLiteral("--speed must be 0.1 to 1000.");
        }
    }
    if (parser.isSet(theme)) {
        const QString name = parser.value(theme);
        if (name == QStringLiteral("daylight")) {
            options.theme = Theme::Kind::Daylight;
        } else if (name == QStringLiteral("dark")) {
            options.theme = Theme::Kind::Dark;
        } else if (name == QStringLiteral("system")) {
            options.theme = Theme::Kind::System;
        } else {
            options.fault = QStringLiteral("--theme must be daylight, dark or system.");
        }
    }
    return options;
}

} // namespace fieldcore
