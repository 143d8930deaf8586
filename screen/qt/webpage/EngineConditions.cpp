#include "screen/qt/webpage/EngineConditions.h"

#include <algorithm>
#include <cerrno>

#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QApplication>
#include <QFileInfo>
#include <QLibraryInfo>
#include <QStringList>
#include <QThread>

namespace velmora::webpage {

namespace {

using Reason = std::optional<std::string>;

Reason noWidgets() {
    if (qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr) return {};
    return "it needs a QApplication";
}

Reason anotherThread() {
    if (QThread::currentThread() == QCoreApplication::instance()->thread()) return {};
    return "it needs the application's thread";
}

Reason contextsAreNotShared() {
    if (QCoreApplication::testAttribute(Qt::AA_ShareOpenGLContexts)) return {};
    return "Qt::AA_ShareOpenGLContexts was not set before the application object was made";
}

/// Where the engine looks for one of its files: where the variable says and nowhere else, or in Qt's folder
/// and beside the application.
Reason missing(const char* variable, const QString& qtFolder, const QString& name, bool variableNamesFile) {
    QStringList candidates;
    if (const auto said = qEnvironmentVariable(variable); !said.isEmpty()) {
        candidates << (variableNamesFile ? said : said + u'/' + name);
    } else {
        candidates << qtFolder + u'/' + name << QCoreApplication::applicationDirPath() + u'/' + name;
    }
    const auto exists = [](const QString& file) { return QFileInfo::exists(file); };
    if (std::any_of(candidates.cbegin(), candidates.cend(), exists)) return {};
    return "there is no " + candidates.join(QStringLiteral(" and no ")).toStdString();
}

Reason noProcess() {
    return missing("QTWEBENGINEPROCESS_PATH", QLibraryInfo::path(QLibraryInfo::LibraryExecutablesPath),
                   QStringLiteral("QtWebEngineProcess"), true);
}

Reason noResources() {
    return missing("QTWEBENGINE_RESOURCES_PATH",
                   QLibraryInfo::path(QLibraryInfo::DataPath) + QStringLiteral("/resources"),
                   QStringLiteral("qtwebengine_resources.pak"), false);
}

bool sandboxIsDisabled() {
    if (qEnvironmentVariable("QTWEBENGINE_DISABLE_SANDBOX") == QStringLiteral("1")) return true;
    const auto off = QStringLiteral("--no-sandbox");
    return qEnvironmentVariable("QTWEBENGINE_CHROMIUM_FLAGS").split(u' ').contains(off) ||
           QCoreApplication::arguments().contains(off);
}

/// Tries what the engine's sandbox is made of, in a process of its own.
bool namespacesAreAvailable() {
    const pid_t child = ::fork();
    if (child == 0) ::_exit(::unshare(CLONE_NEWUSER | CLONE_NEWPID | CLONE_NEWNET) == 0 ? 0 : 1);
    int status = -1;
    while (child > 0 && ::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return child > 0 && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

Reason noSandbox() {
    if (sandboxIsDisabled()) return {};
    if (::geteuid() == 0) return "it does not run as root, unless QTWEBENGINE_DISABLE_SANDBOX is 1";
    if (namespacesAreAvailable()) return {};
    return "this host allows no sandbox of user namespaces";
}

}  // namespace

std::optional<std::string> whyTheEngineCannotStart() {
    static bool none = false;
    if (none) return {};
    for (auto* condition :
         {noWidgets, anotherThread, contextsAreNotShared, noProcess, noResources, noSandbox}) {
        if (auto reason = condition()) return "the browser engine was not started: " + *reason;
    }
    none = true;
    return {};
}

}  // namespace velmora::webpage
