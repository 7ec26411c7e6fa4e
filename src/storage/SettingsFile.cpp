/// \file
/// Reading and writing the settings of section "Main", and the conversion of
/// their texts to numbers.
#include "storage/SettingsFile.h"
#include "storage/Folders.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QStandardPaths>
#include <cfloat>
#include <cmath>

namespace {

const QString kSettingsFileName = QStringLiteral("TRELK.ini");

bool IsBlank(QChar ch)
{
    return ch == QLatin1Char(' ') || ch == QLatin1Char('\t');
}

bool IsDigit(QChar ch)
{
    return ch >= QLatin1Char('0') && ch <= QLatin1Char('9');
}

/// Checks the syntax of note [Numbers in settings] and gives the value.
NumberCheck ConvertToDouble(const QString& text, double& value)
{
    qsizetype i = 0, end = text.size();
    while (i < end && IsBlank(text[i]))
        ++i;
    while (end > i && IsBlank(text[end - 1]))
        --end;

    // The number is rebuilt in one fixed form, so that the conversion below
    // sees nothing but what the syntax allows.
    QString canonical;
    if (i < end && (text[i] == QLatin1Char('+') || text[i] == QLatin1Char('-')))
        canonical += text[i++];
    QString whole, fraction;
    while (i < end && IsDigit(text[i]))
        whole += text[i++];
    if (i < end && text[i] == QLatin1Char('.')) {
        ++i;
        while (i < end && IsDigit(text[i]))
            fraction += text[i++];
    }
    if (whole.isEmpty() && fraction.isEmpty())
        return NumberCheck::NotANumber;
    canonical += (whole.isEmpty() ? QStringLiteral("0") : whole) + QLatin1Char('.')
                 + (fraction.isEmpty() ? QStringLiteral("0") : fraction);
    if (i < end && (text[i] == QLatin1Char('e') || text[i] == QLatin1Char('E'))) {
        ++i;
        canonical += QLatin1Char('e');
        if (i < end && (text[i] == QLatin1Char('+') || text[i] == QLatin1Char('-')))
            canonical += text[i++];
        const qsizetype digits = i;
        while (i < end && IsDigit(text[i]))
            canonical += text[i++];
        if (i == digits)
            return NumberCheck::NotANumber;
    }
    if (i != end)
        return NumberCheck::NotANumber;

    bool ok = false;
    value = QLocale::c().toDouble(canonical, &ok);
    if (!std::isfinite(value))
        return NumberCheck::OutOfRange;
    if (!ok)
        value = 0;  // the only other failure left is an underflow: the number is as good as 0
    return NumberCheck::Ok;
}

/// Reads the keys of section "Main" through PINI, turning texts into numbers
/// and leaving the first failure in error.
class Reader {
public:
    Reader(const PINI& ini, QString& error)
        : m_ini(ini)
        , m_error(error)
    {
    }

    QString Text(const QString& key, const QString& defaultValue) const
    {
        return m_ini.GetSetting(kSettingsApplication, kSettingsSection, key, defaultValue);
    }

    template <typename Int>
    bool Integer(const QString& key, Int defaultValue, qint64 least, qint64 most, Int& value) const
    {
        const QString text = Text(key, QString::number(defaultValue));
        qint32 read = 0;
        const NumberCheck check = ConvertToInteger(text, least, most, read);
        if (check == NumberCheck::Ok) {
            value = Int(read);
            return true;
        }
        Fail(key, text,
             check == NumberCheck::NotANumber
                 ? QStringLiteral("which is not a number.")
                 : QStringLiteral("which is out of range (%1 to %2).").arg(least).arg(most));
        return false;
    }

    bool Single(const QString& key, float& value, int defaultValue, int most) const
    {
        const QString text = Text(key, QString::number(defaultValue));
        float read = 0;
        NumberCheck check = ConvertToSingle(text, read);
        if (check == NumberCheck::Ok && std::fabs(read) > float(most))
            check = NumberCheck::OutOfRange;
        if (check == NumberCheck::Ok) {
            value = read;
            return true;
        }
        Fail(key, text,
             check == NumberCheck::NotANumber ? QStringLiteral("which is not a number.")
                                              : QStringLiteral("which is out of range (%1 to %2).").arg(-most).arg(most));
        return false;
    }

private:
    void Fail(const QString& key, const QString& text, const QString& why) const
    {
        m_error = QStringLiteral("Settings file %1: key \"%2\" in section \"%3\" holds \"%4\", %5")
                      .arg(QDir::toNativeSeparators(m_ini.File()), key, kSettingsSection, text, why);
    }

    const PINI& m_ini;
    QString& m_error;
};

} // namespace

QString DefaultSettingsPath()
{
    const QString programDir = QCoreApplication::applicationDirPath();
    if (!programDir.isEmpty() && QFileInfo(programDir).isWritable())
        return QDir(programDir).filePath(kSettingsFileName);
    const QString config = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return QDir(config).filePath(QStringLiteral("TRELK/") + kSettingsFileName);
}

NumberCheck ConvertToInteger(const QString& text, qint64 least, qint64 most, qint32& value)
{
    double number = 0;
    const NumberCheck check = ConvertToDouble(text, number);
    if (check != NumberCheck::Ok)
        return check;
    // The default rounding mode rounds half to even, as Basic runtimes do.
    const double rounded = std::nearbyint(number);
    if (rounded < double(least) || rounded > double(most))
        return NumberCheck::OutOfRange;
    value = qint32(rounded);
    return NumberCheck::Ok;
}

NumberCheck ConvertToSingle(const QString& text, float& value)
{
    double number = 0;
    const NumberCheck check = ConvertToDouble(text, number);
    if (check != NumberCheck::Ok)
        return check;
    if (std::fabs(number) > double(FLT_MAX))
        return NumberCheck::OutOfRange;
    value = float(number);
    return NumberCheck::Ok;
}

QString SingleText(float value)
{
    return QString::number(double(value), 'g', 7);
}

bool ReadSettings(const PINI& ini, Settings& settings, const QString& programFolder, QString& error)
{
    const Reader r(ini, error);
    Settings s = settings;
    const Settings defaults;
    using namespace SettingRange;
    if (!r.Integer(QStringLiteral("CellWidth"), defaults.cellWidth, kCellWidthLeast, kCellWidthMost, s.cellWidth))
        return false;
    if (s.cellWidth < kCellWidthUsed)
        s.cellWidth = kCellWidthUsed;
    if (!r.Integer(QStringLiteral("MaxCycle"), defaults.maxCycle, kMaxCycleLeast, kMaxCycleMost, s.maxCycle))
        return false;

    // The flags keep the whole 32-bit range: 0 is off and any other value on
    // (-1 is how Basic programs write "on"); nothing counts with them.
    struct IntKey {
        const char* key;
        int Settings::*field;
    };
    static const IntKey intKeys[] = {
        {"GenerateRules", &Settings::generateRules},
        {"GenerateRuleReverse", &Settings::generateRuleReverse},
        {"GenerateComment", &Settings::generateComment},
        {"GenerateRecognizer", &Settings::generateRecognizer},
        {"LFLetters", &Settings::lfLetters},
        {"DisplayAllItems", &Settings::displayAllItems},
    };
    for (const IntKey& k : intKeys) {
        if (!r.Integer(QLatin1String(k.key), defaults.*k.field, INT32_MIN, INT32_MAX, s.*k.field))
            return false;
    }
    struct ShortKey {
        const char* key;
        std::int16_t Settings::*field;
    };
    static const ShortKey shortKeys[] = {
        {"PSignLT", &Settings::pSignLT},
        {"PSignEQ", &Settings::pSignEQ},
        {"PSignGT", &Settings::pSignGT},
    };
    for (const ShortKey& k : shortKeys) {
        if (!r.Integer(QLatin1String(k.key), defaults.*k.field, INT16_MIN, INT16_MAX, s.*k.field))
            return false;
    }
    if (!r.Integer(QStringLiteral("PUseQ"), defaults.pUseQ, INT32_MIN, INT32_MAX, s.pUseQ))
        return false;
    s.quoteMark = s.pUseQ != 0 ? QStringLiteral("\"") : QString();

    s.syntaxType = r.Text(QStringLiteral("SyntaxType"), defaults.syntaxType);
    s.tokenType = r.Text(QStringLiteral("TokenType"), defaults.tokenType);
    s.tokenPrefix = r.Text(QStringLiteral("TokenPrefix"), defaults.tokenPrefix);
    s.initDir = NormaliseFolder(r.Text(QStringLiteral("InitDir"), programFolder));
    s.saveDir = NormaliseFolder(r.Text(QStringLiteral("SaveDir"), s.initDir));
    s.tkcDir = NormaliseFolder(r.Text(QStringLiteral("TKCDir"), s.initDir));
    s.filePath = r.Text(QStringLiteral("FilePath"), defaults.filePath);
    settings = s;
    return true;
}

bool ReadWindowPosition(const PINI& ini, Settings& settings, int defaultLeft, int defaultTop, QString& error)
{
    const Reader r(ini, error);
    float left = 0, top = 0;
    const int most = SettingRange::kPositionMost;
    if (!r.Single(QStringLiteral("Left"), left, defaultLeft, most) || !r.Single(QStringLiteral("Top"), top, defaultTop, most))
        return false;
    settings.left = left;
    settings.top = top;
    return true;
}

void WriteSettings(const PINI& ini, const Settings& settings, const QString& grammarPath)
{
    if (ini.File().isEmpty())
        return;
    QDir().mkpath(QFileInfo(ini.File()).absolutePath());
    auto save = [&ini](const char* key, const QString& value) {
        ini.SaveSetting(kSettingsApplication, kSettingsSection, QLatin1String(key), value);
    };
    save("Left", SingleText(settings.left));
    save("Top", SingleText(settings.top));
    save("InitDir", NormaliseFolder(settings.initDir));
    save("SaveDir", NormaliseFolder(settings.saveDir));
    save("TKCDir", NormaliseFolder(settings.tkcDir));
    // An unnamed grammar keeps the old "FilePath", so that the next start
    // reopens the last grammar that had a name.
    if (!grammarPath.isEmpty())
        save("FilePath", grammarPath);
    save("GenerateRules", QString::number(settings.generateRules));
    save("GenerateRuleReverse", QString::number(settings.generateRuleReverse));
    save("GenerateComment", QString::number(settings.generateComment));
    save("GenerateRecognizer", QString::number(settings.generateRecognizer));
    save("LFLetters", QString::number(settings.lfLetters));
    save("DisplayAllItems", QString::number(settings.displayAllItems));
    save("SyntaxType", settings.syntaxType);
    save("TokenPrefix", settings.tokenPrefix);
    save("MaxCycle", QString::number(settings.maxCycle));
    save("CellWidth", QString::number(settings.cellWidth));
    save("PUseQ", QString::number(settings.pUseQ));
    save("PSignLT", QString::number(settings.pSignLT));
    save("PSignEQ", QString::number(settings.pSignEQ));
    save("PSignGT", QString::number(settings.pSignGT));
    // "TokenType" is never written on purpose: it changes only by editing the file by hand.
}
