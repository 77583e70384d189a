#include "layers/rules/LayerRules.h"

#include "layers/rules/SettingsRules.h"

#include <QtTest>

using Kind = FindingSubject::Kind;

/// What the rules of `quillmap-tool check` do not show: the subjects of findings.
class tst_LayerRules : public QObject
{
    Q_OBJECT

private slots:
    void FindingsNameTheLayer();
    void SettingsBelongToTheProject();
};

void tst_LayerRules::FindingsNameTheLayer()
{
    const FindingSpot layer = LayerSpot(7, "Lake");
    Findings findings;
    CheckLayerFlags(layer, 0, 0, {}, findings);
    CheckLayerFlags(layer, 4, 0, {{"Coast"}, {}}, findings);
    CheckLayerPixels(layer, 0, 0, findings);
    CheckLayerPixels(layer, 5, 2, findings);
    CheckBitmap(layer, BitmapFault::None, {}, findings);
    CheckBitmap(layer, BitmapFault::WrongSize, "is small.", findings);
    AddCutOffBitmap(layer, findings);
    for (const FormulaState state :
         {FormulaState::None, FormulaState::UpToDate, FormulaState::Edited, FormulaState::OutOfDate,
          FormulaState::Broken}) {
        CheckFormula(layer, state, findings);
    }
    QStringList rules;
    for (const Finding& finding : qAsConst(findings)) {
        rules.append(finding.rule);
        QCOMPARE(finding.place, QString("layer 'Lake'"));
        QVERIFY(finding.subject == (FindingSubject{Kind::Layer, 7}));
    }
    QCOMPARE(rules, QStringList({"layer-without-flags", "unnamed-flag", "layer-without-pixels",
                                 "mask-value", "bitmap-size", "bitmap-cut-off",
                                 "derived-out-of-date", "derived-broken"}));
    AddOrphanBitmap("Old.tga", findings);
    QVERIFY(findings.last().subject == FindingSubject{Kind::Bitmap});
}

void tst_LayerRules::SettingsBelongToTheProject()
{
    SettingsFacts facts;
    facts.layerSize = {512, 512};
    facts.worldSize = {1000, 1000};
    facts.usageCount = 32;
    Findings findings;
    CheckSettings(facts, findings);
    QVERIFY(findings.isEmpty());
    facts.usageCount = 33;
    facts.background = "back.png";
    facts.backgroundFault = "does not exist.";
    CheckSettings(facts, findings);
    QCOMPARE(findings.size(), 2);
    QVERIFY(findings.first().subject == FindingSubject{});
    QCOMPARE(findings.first().rule, QString("too-many-flag-types"));
    QVERIFY(findings.last().subject == FindingSubject{Kind::Background});
}

QTEST_APPLESS_MAIN(tst_LayerRules)
#include "tst_LayerRules.moc"
