#include "app/Stamping.h"

#include "component/AtlavexLibrary.h"
#include "platform/modGUID.h"

#include <QDateTime>

QString NowText() {
    return QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

void DescribeNewObject(Metadata& object, const QString& name, const QString& description,
                       const std::string& version) {
    object.SetMetadata("name", name.toStdString());
    object.SetMetadata("description", description.toStdString());
    object.SetMetadata("version", version);
    object.SetMetadata("created", NowText().toStdString());
    object.SetMetadata("lastchanged", NowText().toStdString());
}

void StampLastChanged(AtlavexLibrary& library) {
    for (std::int32_t position = 1; position <= library.MapCount(); ++position)
        library.GetMap(library.MapIdAt(position))->SetMetadata("lastchanged", NowText().toStdString());
    for (std::int32_t position = 1; position <= library.IconCount(); ++position)
        library.GetIcon(library.IconIdAt(position))->SetMetadata("lastchanged", NowText().toStdString());
}

void CompleteIdentifiers(AtlavexLibrary& library) {
    for (std::int32_t position = 1; position <= library.MapCount(); ++position) {
        const auto map = library.GetMap(library.MapIdAt(position));
        if (!IsGUIDText(map->Identifier()))
            map->SetIdentifier(CreateGUID());
    }
}
