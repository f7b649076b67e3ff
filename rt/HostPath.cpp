#include "rt/HostPath.h"

namespace rt {

QString localPath(const QString& hostPath)
{
    QString path = hostPath;
    path.replace(u'\\', u'/');
    return path;
}

}  // namespace rt
