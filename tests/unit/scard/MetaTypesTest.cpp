#include "QtPrinters.h"

#include <scard/SCardCompanyG1.h>
#include <scard/SCardCompanyG2.h>
#include <scard/SCardDriverG1.h>
#include <scard/SCardDriverG2.h>
#include <scard/SCardGeneric.h>
#include <scard/SCardMeta.h>
#include <scard/SCardReader.h>
#include <scard/SCardWorkshopG1.h>
#include <scard/SCardWorkshopG2.h>

#include <gmock/gmock.h>

#include <QMetaEnum>
#include <QMetaMethod>
#include <QMetaType>

#include <string>
#include <vector>

// What hosts see through Qt's meta system: they name signals, types and enumerators by text.

namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;

std::vector<std::string> signalsOf(const QMetaObject& meta)
{
    std::vector<std::string> names;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        if (meta.method(i).methodType() == QMetaMethod::Signal)
            names.push_back(meta.method(i).methodSignature().toStdString());
    return names;
}

TEST(SCardMeta, TypesHaveTheValuesOfTheEquipmentTypeByte)
{
    const QMetaEnum types = QMetaEnum::fromType<scard::SCardMeta::Type>();
    const char* names[] = {"Reserved",          "DriverCard",  "WorkshopCard", "ControlCard", "CompanyCard",
                           "ManufacturingCard", "VehicleUnit", "MotionSensor", "DownloadKey"};

    EXPECT_STREQ(types.name(), "Type");
    EXPECT_STREQ(types.scope(), "scard::SCardMeta");
    ASSERT_EQ(types.keyCount(), 9);
    for (int value = 0; value < 9; ++value) {
        EXPECT_STREQ(types.valueToKey(value), names[value]);
        EXPECT_EQ(types.keyToValue(names[value]), value);
    }
}

TEST(SCardMeta, IsANamespaceWithAMetaObject)
{
    EXPECT_STREQ(scard::SCardMeta::staticMetaObject.className(), "scard::SCardMeta");
    EXPECT_EQ(scard::SCardMeta::staticMetaObject.indexOfEnumerator("Type"), 0);
}

TEST(FilenameRegion, HasItsValues)
{
    EXPECT_EQ(int{scard::RegionDDD}, 0);
    EXPECT_EQ(int{scard::RegionC1B}, 1);
    EXPECT_EQ(int{scard::RegionTGD}, 2);
}

TEST(MetaTypes, AReaderMakesItsArgumentsKnown)
{
    const scard::SCardReader reader;

    for (const char* name :
         {"aux::Error", "scard::SCardMeta::Type", "std::shared_ptr<scard::SCardGeneric>", "QLocale"}) {
        SCOPED_TRACE(name);
        EXPECT_NE(QMetaType::type(name), int{QMetaType::UnknownType});
    }
    EXPECT_EQ(QMetaType::type("aux::Error"), qMetaTypeId<aux::Error>());
}

TEST(MetaTypes, TheReadersSignalsAreThese)
{
    EXPECT_THAT(
        signalsOf(scard::SCardReader::staticMetaObject),
        UnorderedElementsAre(
            "error(aux::Error)", "present(bool)", "removed()",
            "readDone(std::shared_ptr<scard::SCardGeneric>)", "progress(int)", "cardLanguage(QLocale)",
            "cardType(scard::SCardMeta::Type)", "cardHolder(QString)"));
}

TEST(MetaTypes, TheCardsSignalsAreThese)
{
    EXPECT_THAT(
        signalsOf(scard::SCardGeneric::staticMetaObject),
        UnorderedElementsAre(
            "progress(int)", "removed()", "cardLanguage(QLocale)", "cardHolderName(QString)",
            "lastCardDownload(QDateTime)"));
    for (const QMetaObject* meta :
         {&scard::SCardDriverG1::staticMetaObject, &scard::SCardDriverG2::staticMetaObject,
          &scard::SCardWorkshopG1::staticMetaObject, &scard::SCardWorkshopG2::staticMetaObject,
          &scard::SCardCompanyG1::staticMetaObject, &scard::SCardCompanyG2::staticMetaObject})
        EXPECT_THAT(signalsOf(*meta), ElementsAre()) << meta->className();
}

TEST(MetaTypes, ClassesDeriveAsTheirMetaObjectsSay)
{
    const struct
    {
        const QMetaObject* meta;
        const char* name;
        const QMetaObject* base;
    } rows[] = {
        {&scard::SCardGeneric::staticMetaObject, "scard::SCardGeneric", &QObject::staticMetaObject},
        {&scard::SCardReader::staticMetaObject, "scard::SCardReader", &QObject::staticMetaObject},
        {&scard::SCardDriverG1::staticMetaObject, "scard::SCardDriverG1",
         &scard::SCardGeneric::staticMetaObject},
        {&scard::SCardDriverG2::staticMetaObject, "scard::SCardDriverG2",
         &scard::SCardDriverG1::staticMetaObject},
        {&scard::SCardWorkshopG1::staticMetaObject, "scard::SCardWorkshopG1",
         &scard::SCardGeneric::staticMetaObject},
        {&scard::SCardWorkshopG2::staticMetaObject, "scard::SCardWorkshopG2",
         &scard::SCardWorkshopG1::staticMetaObject},
        {&scard::SCardCompanyG1::staticMetaObject, "scard::SCardCompanyG1",
         &scard::SCardGeneric::staticMetaObject},
        {&scard::SCardCompanyG2::staticMetaObject, "scard::SCardCompanyG2",
         &scard::SCardCompanyG1::staticMetaObject},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_STREQ(row.meta->className(), row.name);
        EXPECT_EQ(row.meta->superClass(), row.base);
    }
}

} // namespace
