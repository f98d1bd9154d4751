# Shared by the scripts that take archives from Debian without installing them: an apt of their own, which uses the
# machine's package sources and keys and changes no system file.
# shellcheck shell=bash

# write_source_lists PARTS TYPE [SUITE]: the machine's own package sources of this Debian release's main archive, as sources
# of TYPE ("deb" or "deb-src"); with SUITE, those of that release in its place.
write_source_lists() {
    local parts=$1 type=$2 suite=${3:-} file
    for file in /etc/apt/sources.list.d/*.sources; do
        [ -e "$file" ] || continue
        # One stanza after another. Updates and security have other suites, which only this release's own name brings.
        awk -v release="$VERSION_CODENAME" -v type="$type" -v suite="$suite" 'BEGIN { RS = ""; ORS = "\n\n" }
            $0 ~ "(^|\n)Suites:[^\n]*" release {
                if ($0 !~ "Components:[^\n]*main" || $0 ~ "(^|\n)Enabled: *no") next
                if (suite && $0 !~ "(^|\n)Suites:([^\n]* )?" release "( |\n|$)") next
                sub(/Types:[^\n]*/, "Types: " type)
                if (suite) sub(/Suites:[^\n]*/, "Suites: " suite)
                print
            }' "$file" >"$parts/$(basename "$file")"
    done
    for file in /etc/apt/sources.list /etc/apt/sources.list.d/*.list; do
        [ -e "$file" ] || continue
        awk -v release="$VERSION_CODENAME" -v type="$type" -v suite="$suite" '
            $1 == "deb" && $0 ~ " " release (suite ? "" : "[^ ]*") " .*main" {
                sub(/^deb/, type)
                if (suite) sub(" " release " ", " " suite " ")
                print
            }' "$file" >"$parts/$(basename "$file")"
    done
    find "$parts" -type f -empty -delete
}

# package_sites: where this machine takes packages from, one address a line.
package_sites() {
    local file
    for file in /etc/apt/sources.list.d/*.sources; do
        [ -e "$file" ] && sed -n 's/^URIs: *//p' "$file" | tr -s ' ' '\n'
    done
    for file in /etc/apt/sources.list /etc/apt/sources.list.d/*.list; do
        [ -e "$file" ] && sed -nE 's/^deb +(\[[^]]*\] +)?([^ ]+) .*/\2/p' "$file"
    done
    return 0
}

# prepare_private_apt FOLDER TYPE [SUITE]: makes the folder anew, sets APT to it, and fetches the index.
prepare_private_apt() {
    APT=$1
    rm -rf "$APT"
    mkdir -p "$APT"/parts "$APT"/lists/partial "$APT"/cache/archives/partial
    . /etc/os-release
    write_source_lists "$APT/parts" "${@:2}"
    [ -n "$(ls "$APT/parts")" ] || die "no Debian package source is configured on this machine (/etc/apt)"
    quietly "$BUILD/logs/apt-update.log" private_apt -oAPT::Update::Error-Mode=any update
}

private_apt() {
    apt-get -oDir::Etc::sourcelist=/dev/null "-oDir::Etc::sourceparts=$APT/parts" "-oDir::State::Lists=$APT/lists" \
        "-oDir::Cache=$APT/cache" "-oAPT::Sandbox::User=$(id -un)" "$@"
}
