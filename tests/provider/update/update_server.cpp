#include "tests/provider/update/update_server.h"

namespace kvl::test {
namespace {

constexpr const char* kFunctions = R"sh(
trace=/opt/tarvenn/kvl/log/kvl.log
temp=$tree/temp work=$tree/temp/CNA list=$tree/temp/Listhbas.txt
firmware() {
    device=$1 module=$2
    shift 2
    run kvl update firmware $device --module /modules/$module --unique-name ${module%%-*} --yes "$@"
}
update() { firmware 02:00.0 OCe11102 "$@"; }
tool_update() {
    module=$1
    shift
    run kvl update tool --module /modules/$module --yes "$@"
}
group_kvl() {
    LD_PRELOAD=$no_waits /bin/busybox setsid /bin/sh -c 'echo $$ >/tmp/kvl; exec "$program" "$@"' - "$@"
}
versions() { sed -n "s/^\(FW\|Firmware\|Boot Bios\) Version: //p" $ports/$1/dump | /bin/busybox paste -s -d' ' -; }
replace() {
    rm -f "$1"
    printf '#!/bin/sh\n%s\n' "$2" >"$1"
    chmod 755 "$1"
}
during() { replace $tool "case \$1 in $1) $2 ;; esac; exec /.machine/hbacmd \"\$@\""; }
after_unzip() { replace /bin/unzip "/bin/busybox unzip \"\$@\"; $1"; }
instead_of_unzip() { replace /bin/unzip "$1"; }
work_beside() {
    during Download 'echo >/tmp/begun; while [ ! -f /tmp/released ]; do sleep 0.001; done'
    kvl update firmware 02:00.0 --module /modules/OCe11102 --unique-name OCe11102 --yes >/dev/null 2>&1 &
    while [ ! -f /tmp/begun ]; do sleep 0.001; done
}
release() {
    touch /tmp/released
    wait
}
state() {
    find / -xdev \( -path /.machine -o -path /proc \) -prune -o -exec stat -c '%A %u %N' {} + | sort
    find / -xdev \( -path /.machine -o -path /proc \) -prune -o -type f -exec /bin/busybox md5sum {} + | sort
}
ended() { sed -n 's/^.\{23\} OPERATOR //p' $trace; }
)sh";

}  // namespace

Outcome updateOnServer(const std::string& script, const std::string& machine, const std::string& modules) {
    return runOnServer(kFunctions + script, machine, modules);
}

std::string typeDuringUpdate(const std::string& typed, const std::string& script, const std::string& machine) {
    return typeOnServer(typed, kFunctions + script, machine);
}

}  // namespace kvl::test
