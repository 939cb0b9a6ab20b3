#!/usr/bin/env python3
"""Whether a bill of materials holds together: identities once each, every relation between known ones,
every linked or compiled-in package with version and licence.

    scripts/check_sbom.py FILE [--count]     --count prints only how much is in it
"""
import json
import re
import sys

REQUIRED = {'SPDXID', 'name', 'downloadLocation', 'licenseConcluded', 'copyrightText'}


def faults(document: dict) -> list[str]:
    found = []
    elements = document['packages'] + document['files']
    names = [e['SPDXID'] for e in elements] + [document['SPDXID']]
    if document['spdxVersion'] != 'SPDX-2.3':
        found.append('not SPDX 2.3')
    found += [f'{name} is there twice' for name in set(names) if names.count(name) > 1]
    found += [f'{name} is no identity' for name in names if not re.fullmatch(r'SPDXRef-[A-Za-z0-9.-]+', name)]
    for package in document['packages']:
        found += [f'{package["SPDXID"]} lacks {key}' for key in REQUIRED - package.keys()]
        if package['SPDXID'].startswith('SPDXRef-Debian') and not package.get('versionInfo'):
            found.append(f'{package["SPDXID"]} has no version')
    for relation in document['relationships']:
        found += [f'{relation[end]} is unknown' for end in ('spdxElementId', 'relatedSpdxElement')
                  if relation[end] not in names]
    kinds = {r['relationshipType'] for r in document['relationships']}
    found += [f'nothing is related by {kind}' for kind in ('DYNAMIC_LINK', 'STATIC_LINK', 'CONTAINS')
              if kind not in kinds]
    return found


def main() -> int:
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    with open(sys.argv[1]) as file:
        document = json.load(file)
    found = faults(document)
    for fault in found:
        print(f'sbom: {fault}', file=sys.stderr)
    foreign = sum(p['SPDXID'].startswith('SPDXRef-Debian') for p in document['packages'])
    counts = f'{len(document["files"])} files and {foreign} Debian packages in the bill of materials'
    print(counts if '--count' in sys.argv else f'sbom: {counts}, {len(found)} faults')
    return 1 if found else 0


if __name__ == '__main__':
    sys.exit(main())
