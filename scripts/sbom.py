#!/usr/bin/env python3
"""Bill of materials of the built packages, SPDX 2.3 as JSON, to standard output.

    scripts/sbom.py BUILD_DIR PACKAGES_DIR

Nothing is declared by hand but licences (packaging/licences.txt): what is linked comes from the ELF files
in the packages, what is compiled in from the headers that the build read, versions from dpkg. The
document's time is SOURCE_DATE_EPOCH.
"""
import functools
import hashlib
import json
import os
import re
import subprocess
import sys
import tempfile
import time
import uuid
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
OWN_LICENCE = 'Apache-2.0'
# Where the objects of a package's files lie in the build.
OBJECTS = {'libvorel1': ('CMakeFiles/vorel',), 'vorel': ('tools/',), 'gstreamer1.0-vorel': ('gstreamer/',),
           'libvorel-dev': ()}


def output(*command: str, cwd=None) -> str:
    return subprocess.run(command, check=True, capture_output=True, text=True, cwd=cwd).stdout


def read_licences() -> dict[str, str]:
    lines = (ROOT / 'packaging' / 'licences.txt').read_text().splitlines()
    return dict(line.split(None, 1) for line in lines if line and not line.startswith('#'))


def owners(paths: set[str]) -> dict[str, str]:
    """The Debian package that has each file; with /usr merged, dpkg may know it without /usr."""
    found: dict[str, str] = {}
    for shorten in (str, lambda path: path.removeprefix('/usr')):
        names = {shorten(path): path for path in paths - found.keys()}
        if names:
            answer = subprocess.run(['dpkg-query', '-S', *sorted(names)], capture_output=True, text=True).stdout
            for line in answer.splitlines():
                packages, name = line.rsplit(': ', 1)
                if name in names:
                    found.setdefault(names[name], packages.split(',')[0].split(':')[0])
    for path in paths - found.keys():
        sys.exit(f'sbom: no package has {path}')
    return found


def library_file(name: str, folders: list[str]) -> str:
    for folder in folders:
        if os.path.exists(f'{folder}/{name}'):
            return os.path.realpath(folder) + '/' + name
    sys.exit(f'sbom: {name} is in none of {" ".join(folders)}')


def compiled_in(build: Path, objects: tuple[str, ...], linked_sources: set[str]) -> set[str]:
    """Packages whose headers an object read and whose libraries nothing links: all their code is here."""
    headers = set()
    reads = False
    for line in output('ninja', '-t', 'deps', cwd=build).splitlines():
        if line and not line.startswith(' '):
            reads = line.startswith(objects) if objects else False
        elif reads and line.strip().startswith('/usr/'):
            headers.add(os.path.realpath(line.strip()))
    return {name for name in set(owners(headers).values()) if source_of(name) not in linked_sources}


@functools.cache
def source_of(package: str) -> str:
    return output('dpkg-query', '-W', '-f', '${source:Package}\n', package).splitlines()[0]


def spdx_id(kind: str, name: str) -> str:
    return f'SPDXRef-{kind}-' + re.sub(r'[^A-Za-z0-9.-]', '-', name)


def checksums(data: bytes) -> list[dict]:
    return [{'algorithm': kind, 'checksumValue': hashlib.new(kind, data).hexdigest()}
            for kind in ('sha1', 'sha256')]


def upper(sums: list[dict]) -> list[dict]:
    return [{**entry, 'algorithm': entry['algorithm'].upper()} for entry in sums]


def debian_package(name: str, licences: dict[str, str]) -> dict:
    if name not in licences:
        sys.exit(f'sbom: the licence of {name} is unknown: read /usr/share/doc/{name}/copyright and add it to '
                 'packaging/licences.txt')
    version, machine = output('dpkg-query', '-W', '-f', '${Version} ${Architecture}\n', name).split()[:2]
    return {'SPDXID': spdx_id('Debian', name), 'name': name, 'versionInfo': version,
            'supplier': 'Organization: Debian', 'downloadLocation': 'NOASSERTION', 'filesAnalyzed': False,
            'sourceInfo': f'built from the Debian source package {source_of(name)}',
            'licenseConcluded': licences[name], 'licenseDeclared': 'NOASSERTION',
            'copyrightText': 'NOASSERTION',
            'externalRefs': [{'referenceCategory': 'PACKAGE-MANAGER', 'referenceType': 'purl',
                              'referenceLocator': f'pkg:deb/debian/{name}@{version}?arch={machine}'}]}


def elf_needs(path: Path) -> list[str]:
    if path.is_symlink() or path.read_bytes()[:4] != b'\x7fELF':
        return []
    return re.findall(r'\(NEEDED\).*\[(.*)\]', output('llvm-readelf-19', '--dynamic', str(path)))


def main() -> None:
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    build, packages_dir = Path(sys.argv[1]).resolve(), Path(sys.argv[2])
    epoch = int(os.environ.get('SOURCE_DATE_EPOCH') or output('git', 'log', '-1', '--format=%ct', cwd=ROOT))
    licences = read_licences()
    triplet = output('dpkg-architecture', '-qDEB_HOST_MULTIARCH').strip()
    folders = [f'/usr/lib/{triplet}', f'/lib/{triplet}', f'/usr/lib/{triplet}/android']
    packages, files, relations, needed = [], [], [], set()

    def relate(first: str, kind: str, second: str) -> None:
        relation = {'spdxElementId': first, 'relationshipType': kind, 'relatedSpdxElement': second}
        if relation not in relations:
            relations.append(relation)

    for deb in sorted(packages_dir.glob('*.deb')):
        name = output('dpkg-deb', '-f', str(deb), 'Package').strip()
        version = output('dpkg-deb', '-f', str(deb), 'Version').strip()
        identity = spdx_id('Package', name)
        linked, hashes, contained = set(), [], []
        with tempfile.TemporaryDirectory() as folder:
            subprocess.run(['dpkg-deb', '-x', deb, folder], check=True)
            for path in sorted(p for p in Path(folder).rglob('*') if p.is_file() and not p.is_symlink()):
                place = './' + str(path.relative_to(folder))
                sums = checksums(path.read_bytes())
                hashes.append(sums[0]['checksumValue'])
                needs = elf_needs(path)
                file = {'SPDXID': spdx_id('File', name + place[1:]), 'fileName': place,
                        'checksums': upper(sums), 'licenseConcluded': OWN_LICENCE,
                        'licenseInfoInFiles': ['NOASSERTION'], 'copyrightText': 'NOASSERTION',
                        'fileTypes': ['BINARY' if needs else 'OTHER']}
                files.append(file)
                contained.append(file['SPDXID'])
                for library in needs:
                    if library.startswith('libvorel.so'):
                        relate(file['SPDXID'], 'DYNAMIC_LINK', spdx_id('Package', 'libvorel1'))
                        continue
                    package = owners({(file_name := library_file(library, folders))})[file_name]
                    linked.add(package)
                    relate(file['SPDXID'], 'DYNAMIC_LINK', spdx_id('Debian', package))
        needed |= linked
        sources = {source_of(p) for p in linked}
        conclusion = [OWN_LICENCE]
        for package in sorted(compiled_in(build, OBJECTS[name], sources)):
            needed.add(package)
            # An exception frees programs that are built with those headers.
            if ' WITH ' not in licences.get(package, ''):
                conclusion.append(licences.get(package, 'NOASSERTION'))
            relate(identity, 'STATIC_LINK', spdx_id('Debian', package))
        for file in contained:
            relate(identity, 'CONTAINS', file)
        packages.append({
            'SPDXID': identity, 'name': name, 'versionInfo': version, 'packageFileName': deb.name,
            'downloadLocation': 'NOASSERTION', 'filesAnalyzed': True,
            'packageVerificationCode': {'packageVerificationCodeValue':
                                        hashlib.sha1(''.join(sorted(hashes)).encode()).hexdigest()},
            'checksums': upper(checksums(deb.read_bytes())), 'licenseConcluded': ' AND '.join(conclusion),
            'licenseDeclared': OWN_LICENCE, 'licenseInfoFromFiles': ['NOASSERTION'],
            'copyrightText': 'the authors of libvorel'})
    if not packages:
        sys.exit(f'sbom: no packages in {packages_dir}')
    described = [p['SPDXID'] for p in packages]
    for archive in sorted(packages_dir.glob('*.tar.gz')):
        identity = spdx_id('Archive', archive.name)
        described.append(identity)
        packages.append({'SPDXID': identity, 'name': archive.name, 'downloadLocation': 'NOASSERTION',
                         'filesAnalyzed': False, 'checksums': upper(checksums(archive.read_bytes())),
                         'licenseConcluded': OWN_LICENCE, 'licenseDeclared': OWN_LICENCE,
                         'copyrightText': 'the authors of libvorel'})
        for package in described[:-1]:
            relate(identity, 'VARIANT_OF', package)
    packages += [debian_package(name, licences) for name in sorted(needed)]
    content = json.dumps([packages, files, relations])
    document = {
        'spdxVersion': 'SPDX-2.3', 'dataLicense': 'CC0-1.0', 'SPDXID': 'SPDXRef-DOCUMENT',
        'name': 'libvorel', 'documentNamespace': f'urn:uuid:{uuid.uuid5(uuid.NAMESPACE_URL, content)}',
        'creationInfo': {'created': time.strftime('%Y-%m-%dT%H:%M:%SZ', time.gmtime(epoch)),
                         'creators': ['Tool: libvorel-scripts-sbom.py']},
        'documentDescribes': described, 'packages': packages, 'files': files,
        'relationships': relations}
    json.dump(document, sys.stdout, indent=1)
    print()


if __name__ == '__main__':
    main()
