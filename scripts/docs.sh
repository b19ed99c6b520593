#!/usr/bin/env bash
# Builds the documents as a site in the folder $1, build/site if there is none. The same documents give
# the same bytes.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

site=$(realpath -m "${1:-$root/build/site}")
SOURCE_DATE_EPOCH=0 mkdocs --quiet build --clean --config-file "$root/packaging/site/mkdocs.yml" --site-dir "$site"
# What web servers and search engines would want.
rm -f "$site"/sitemap.xml "$site"/sitemap.xml.gz "$site"/404.html
