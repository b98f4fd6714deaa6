#include "QtPrinters.h"

#include <scard/SCardDriverG1.h>
#include <scard/SCardDriverG2.h>
#include <scard/SCardGeneric.h>
#include <scard/SCardMeta.h>
#include <scard/SCardReader.h>

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
    EXPECT_THAT(signalsOf(scard::SCardDriverG1::staticMetaObject), ElementsAre());
    EXPECT_THAT(signalsOf(scard::SCardDriverG2::staticMetaObject), ElementsAre());
}

TEST(MetaTypes, ClassesDeriveAsTheirMetaObjectsSay)
{
    EXPECT_STREQ(scard::SCardDriverG2::staticMetaObject.className(), "scard::SCardDriverG2");
    EXPECT_EQ(scard::SCardDriverG2::staticMetaObject.superClass(), &scard::SCardDriverG1::staticMetaObject);
    EXPECT_STREQ(scard::SCardDriverG1::staticMetaObject.className(), "scard::SCardDriverG1");
    EXPECT_EQ(scard::SCardDriverG1::staticMetaObject.superClass(), &scard::SCardGeneric::staticMetaObject);
    EXPECT_EQ(scard::SCardGeneric::staticMetaObject.superClass(), &QObject::staticMetaObject);
    EXPECT_EQ(scard::SCardReader::staticMetaObject.superClass(), &QObject::staticMetaObject);
}

} // namespace
