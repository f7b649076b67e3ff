#include "host/HostPath.h"

namespace host {

QString localPath(const QString& hostPath)
{
    QString path = hostPath;
    path.replace(u'\\', u'/');
    return path;
}

}  // namespace host
