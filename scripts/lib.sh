# What the scripts share; they read this file with `.`.

LUM_PACKAGES="g++ g++-multilib clang libclang-rt-14-dev cmake ninja-build ccache clang-format pkg-config binutils
python3 libicu-dev zlib1g-dev uuid-dev libgtest-dev libbenchmark-dev nlohmann-json3-dev libcli11-dev libexpat1-dev
libpugixml-dev libxml2-dev libxml2-utils xsltproc xz-utils docbook-xml w3c-sgml-lib zip unzip
doxygen"

# Installs the packages named that are missing. Without root it names them and stops.
install_missing() {
    missing=""
    for package in "$@"; do
        dpkg-query -W -f '${db:Status-Status}\n' "$package" 2>/dev/null | grep -qx installed || missing="$missing $package"
    done
    [ -n "$missing" ] || return 0
    if [ "$(id -u)" != 0 ]; then
        echo "Please install:$missing" >&2
        exit 2
    fi
    echo "Installing:$missing"
    quietly sh -c "apt-get -q update && DEBIAN_FRONTEND=noninteractive apt-get -q install -y --no-install-recommends $missing"
}

# quietly COMMAND...: its output is shown only when it fails; its exit code is passed on.
quietly() {
    quiet_log=$(mktemp)
    if "$@" >"$quiet_log" 2>&1; then
        rm -f "$quiet_log"
    else
        quiet_code=$?
        tail -n 400 "$quiet_log" >&2
        rm -f "$quiet_log"
        return "$quiet_code"
    fi
}
