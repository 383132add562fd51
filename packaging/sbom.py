"""Writes the parts that a package is made of and depends on, as SPDX 2.3 in JSON, beside the package.

usage: sbom.py PACKAGE.deb

The time in the document is that of SOURCE_DATE_EPOCH, so the same package gives the same document.
"""

import datetime
import hashlib
import json
import os
import pathlib
import re
import subprocess
import sys

# What is compiled into the programs: parts of this repository, and libraries of the build machine that are headers
# only. Name, licence, and the Debian package whose version is the version.
COMPILED_IN = [
    ("source-serif-4", "OFL-1.1", None),
    ("lucide-icons", "ISC AND MIT", None),
    ("tabler-icons", "MIT", None),
    ("nlohmann-json", "MIT", "nlohmann-json3-dev"),
    ("cli11", "BSD-3-Clause", "libcli11-dev"),
]


def output(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout.strip()


def version_of(package):
    """None if the build machine does not have the package, which only the running program may need."""
    found = subprocess.run(["dpkg-query", "-W", "-f=${Version}\n", package], check=False, capture_output=True, text=True)
    return next(iter(found.stdout.split()), None)


def part(name, version, licence, supplier="NOASSERTION", **more):
    return {"SPDXID": "SPDXRef-" + re.sub(r"[^A-Za-z0-9.-]", "-", name), "name": name,
            **({"versionInfo": version} if version else {}), "supplier": supplier, "downloadLocation": "NOASSERTION",
            "filesAnalyzed": False, "licenseConcluded": licence, "licenseDeclared": licence,
            "copyrightText": "NOASSERTION", **more}


def document(file):
    name, version, depends = (output("dpkg-deb", "-f", file, field) for field in ("Package", "Version", "Depends"))
    digest = hashlib.sha256(file.read_bytes()).hexdigest()
    epoch = int(os.environ.get("SOURCE_DATE_EPOCH", "0"))
    product = part(name, version, "MIT AND OFL-1.1 AND ISC", "Organization: The Spacemint developers",
                   packageFileName=file.name, checksums=[{"algorithm": "SHA256", "checksumValue": digest}])
    parts = [part(item, package and version_of(package), licence) for item, licence, package in COMPILED_IN]
    # The libraries and QML modules that the package asks for, with the versions that it was built against.
    linked = [part(dependency, version_of(dependency), "NOASSERTION")
              for dependency in sorted({re.split(r"[ |:]", item.strip())[0] for item in depends.split(",")})]
    relation = lambda kind, other: {"spdxElementId": product["SPDXID"], "relationshipType": kind,
                                    "relatedSpdxElement": other["SPDXID"]}
    return {
        "spdxVersion": "SPDX-2.3", "dataLicense": "CC0-1.0", "SPDXID": "SPDXRef-DOCUMENT", "name": file.name,
        "documentNamespace": f"https://spacemint.invalid/sbom/{name}-{version}-{digest}",
        "creationInfo": {"created": datetime.datetime.fromtimestamp(epoch, datetime.UTC).strftime("%Y-%m-%dT%H:%M:%SZ"),
                         "creators": ["Organization: The Spacemint developers"]},
        "packages": [product, *parts, *linked],
        "relationships": [{"spdxElementId": "SPDXRef-DOCUMENT", "relationshipType": "DESCRIBES",
                           "relatedSpdxElement": product["SPDXID"]},
                          *(relation("CONTAINS", item) for item in parts),
                          *(relation("DEPENDS_ON", item) for item in linked)],
    }


package = pathlib.Path(sys.argv[1])
target = package.with_suffix(".spdx.json")
target.write_text(json.dumps(document(package), indent=1) + "\n")
print(target)
