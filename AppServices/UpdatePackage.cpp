#include "AppServices/UpdatePackage.h"

#include "core/host/AtomicFile.h"

#include <QFile>
#include <QProcess>

#include <sodium.h>

namespace spacemint {

namespace {

constexpr std::chrono::milliseconds patience{10'000};

bool isSigned(const std::string& bytes, const Update& update, const UpdateKey& key) {
  return sodium_init() >= 0 &&
         crypto_sign_verify_detached(update.signature.data(),
                                     reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(),
                                     key.data()) == 0;
}

// "VALUE" of the line "NAME: VALUE"; empty where there is none.
std::string field(const QByteArray& fields, const QByteArray& name) {
  for (const QByteArray& line : fields.split('\n')) {
    if (line.startsWith(name + ": ")) return line.mid(name.size() + 2).trimmed().toStdString();
  }
  return {};
}

// Of "EPOCH:VERSION-REVISION".
std::string plainVersion(std::string version) {
  version.erase(0, version.find(':') + 1);
  if (const auto revision = version.rfind('-'); revision != std::string::npos) version.resize(revision);
  return version;
}

bool isPackage(const std::string& path, const Update& update, const UpdateTarget& target) {
  QProcess tool;
  tool.start(QStringLiteral("/usr/bin/dpkg-deb"),
             {QStringLiteral("--field"), QFile::decodeName(path.c_str()), QStringLiteral("Package"),
              QStringLiteral("Version"), QStringLiteral("Architecture")});
  const bool hasEnded = tool.waitForFinished(static_cast<int>(patience.count()));
  if (!hasEnded || tool.exitStatus() != QProcess::NormalExit || tool.exitCode() != 0) return false;
  const QByteArray fields = tool.readAllStandardOutput();
  const std::string architecture = field(fields, "Architecture");
  return field(fields, "Package") == target.package &&
         plainVersion(field(fields, "Version")) == update.version &&
         (architecture == target.system.architecture || architecture == "all");
}

}  // namespace

std::expected<void, UpdateProblem> verifyPackage(const std::string& path, const Update& update,
                                                 const UpdateKey& key, const UpdateTarget& target) {
  const auto bytes = readFile(path, static_cast<std::size_t>(update.length));
  if (!bytes || bytes->size() != static_cast<std::size_t>(update.length))
    return std::unexpected{UpdateProblem::fileRefused};
  if (!isSigned(*bytes, update, key)) return std::unexpected{UpdateProblem::signatureRefused};
  if (!isPackage(path, update, target)) return std::unexpected{UpdateProblem::packageRefused};
  return {};
}

}  // namespace spacemint
