#include "widgets/AppSettings.h"
#include "support/SampleFiles.h"
#include "support/Test.h"
#include "widgets/IniText.h"
#include "widgets/PackedColour.h"

using namespace Halvern::UI;

class AppSettingsTest : public Test
{
    Q_OBJECT

    static QVariantMap texts()
    {
        QVariantMap texts;
        for (const QString& key : AppSettings().allKeys())
            texts[key] = AppSettings().value(key).toString();
        return texts;
    }

private slots:
    // What QSettings writes is read, and what is written is what QSettings reads.
    void readsAndWritesWhatQSettingsDoes()
    {
        const AppSettings unnamed;
        AppSettings::SetName("Studio B");
        QVERIFY(unnamed.fileName() != AppSettings().fileName());
        QCOMPARE(AppSettings::FilePath(), AppSettings().fileName());
        for (const QString text :
             {"", "/a/b", " x ", "a;b,c=d", "\"'\\\n\r\t\a\b\f\v\x01?", "ü1Möbel€x", "@x", "@@x", "%20[a]"}) {
            for (const QString key : {"G r/key", "G r/sub/key", "G r/s%/ä 中/\\=[]", "G r/b"}) {
                AppSettings().setValue(key, text);
                QCOMPARE(AppSettings::Text(key).value_or("none"), text);
                AppSettings().setValue(key, "of a size of its own");
                QVERIFY(AppSettings::Store({{key, text}}));
                QCOMPARE(AppSettings().value(key).toString(), text);
            }
        }
        QCOMPARE(IniText::decoded("M\xc3\xb6\"b\"\\xe9l"), QString("Möbél"));
        QCOMPARE(IniText::decoded("M\xf6\xc3\xb6"), QString("MöÃ¶"));
        QVERIFY(AppSettings::Store({{"N/size", QSize(7, 8)}, {"N/flag", true}, {"N/number", -7}}));
        QCOMPARE(AppSettings().value("N/size").toSize(), QSize(7, 8));
        QCOMPARE(AppSettings::Size("N/size").value_or(QSize()), QSize(7, 8));
        QVERIFY(AppSettings().value("N/flag").toBool() && AppSettings::Flag("N/flag").value_or(false));
        QVERIFY(AppSettings().value("N/number") == -7 && AppSettings::Number("N/number") == -7);
        QCOMPARE(AppSettings().allKeys().size(), 7);
        AppSettings::SetName("");
        QCOMPARE(AppSettings::FilePath(), unnamed.fileName());
    }

    // Files that others wrote: what QSettings finds is found, and stays for QSettings when a value is stored.
    void understandsWhatQSettingsDoes()
    {
        int number = 0;
        const QByteArray files[] = {
            "\xef\xbb\xbf[G]\nk=v\n",
            "[ G ]\nk=v\nz=1\n",
            "[G] ; note\n k =v ; note\nz=1",
            "[G/sub]\nk=v\n[G]\nsub\\z=1\n",
            "[G]\r\nk=v\r\nz=1\r\n",
            "[G]\rk=v\rz=1\r",
            "[G]\n%6b=v\nz=1\n",
            "[G]\nk=\"a\nb\"\nz=1\n[P]\nx=1\n",
            "[G]\nk=a\\\nz=2\nz=1\n",
            "[A]\ny=\"\n[G]\nk=no\"\n[G]\nk=v\n",
            "k=v\n[General]\nz=1\n",
            "[%General]\nk=v\n[general]\nk=w\n",
            "[G]\nk=a\nk=v\n[A]\n[G]\nk=w\n",
            ";[G]\n[G\nk=v\n=\n",
            "",
        };
        for (const QByteArray& text : files) {
            for (const QString key : {"G/k", "G/sub/k", "G//k/", "k", "General/k", "new"}) {
                // Each has a name of its own: QSettings remembers what it read.
                AppSettings::SetName("Studio " + std::to_string(++number));
                const QString path = AppSettings::FilePath();
                QVERIFY(SampleFiles::write(path, text));
                QVariantMap expected = texts();
                const QString found = AppSettings().value(key, "none").toString();
                QVERIFY2(AppSettings::Text(key).value_or("none") == found, qPrintable(key + '\n' + text));
                QVERIFY(AppSettings::Store({{key, "=;stored"}}));
                AppSettings::SetName("Studio copy " + std::to_string(number));
                QVERIFY(QFile::copy(path, AppSettings::FilePath()));
                expected[key == "G//k/" ? QString("G/k") : key] = "=;stored";
                QVERIFY2(texts() == expected, qPrintable(key + '\n' + text));
            }
        }
    }

    void leavesAloneWhatItWasNotAskedFor()
    {
        AppSettings::SetName("Studio C");
        const QByteArray bombs =
            "; note\n[A]\nlist=@Variant(\\0\\0\\0\\t\\x7f\\xff\\xff\\xff)\nlong=" + QByteArray(5000, 'x') +
            "\nwide=@Size(40000 40000)\nminus=@Size(-1 5)\nhuge=99999999999\n";
        QVERIFY(SampleFiles::write(AppSettings::FilePath(), bombs + "[B]\nx=1\n"));
        for (const char* key : {"A/list", "A/long", "A/missing", "x", "C/x", "A/wide", "A/minus", "A/huge"})
            QVERIFY2(!AppSettings::Number(key) && !AppSettings::Size(key), key);
        for (const char* key : {"A/list", "A/long", "A/missing", "x", "C/x"})
            QVERIFY2(!AppSettings::Text(key), key);
        QVERIFY(AppSettings::Store({{"A/new", 7}, {"B/x", "a"}}));
        QCOMPARE(SampleFiles::read(AppSettings::FilePath()), bombs + "new=7\n[B]\nx=a\n");
    }

    void takesSmallColoursForGrey()
    {
        QVERIFY(rgb0toQColor(255) == QColor(Qt::white) && rgb0toQColor(256) == QColor(0, 0, 1));
        QCOMPARE(QColorToRgb0(QColor(1, 2, 3, 4)), 0x010203ffU);
    }
};

QTEST_MAIN(AppSettingsTest)
#include "AppSettingsTest.moc"
