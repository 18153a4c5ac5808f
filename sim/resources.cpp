// SPDX-License-Identifier: MIT
#include "sim/resources.h"

#include <QFile>
#include <QString>

// The linker leaves a static library's resources out unless somebody names them, and the macro that
// does so must not stand in a namespace.
static void nameResources()
{
    Q_INIT_RESOURCE(sim);
}

namespace
{

QByteArray contents(const QString &path)
{
    nameResources();
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

QByteArray builtInCatalog()
{
    return contents(QStringLiteral(":/movra-sim/catalog.json"));
}

QByteArray interfaceXml()
{
    return contents(QStringLiteral(":/movra-sim/varn.pim.xml"));
}
