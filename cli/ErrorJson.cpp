#include "ErrorJson.h"

#include <QJsonObject>

QJsonArray entriesJson(const aux::Error& failure)
{
    constexpr int hexadecimal = 16;
    QJsonArray entries;
    for (const aux::ErrorData& entry : failure)
        entries.append(QJsonObject{
            {"source", entry.getSource()},
            {"message", entry.getMessage()},
            {"id", static_cast<qint64>(entry.getId())},
            {"id_hex", QString::number(entry.getId(), hexadecimal).toUpper()},
        });
    return entries;
}
