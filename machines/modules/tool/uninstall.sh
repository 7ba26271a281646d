#!/bin/sh
# uninstall.sh: takes the simulated management tool off the server.
set -u
faults=/var/lib/hbacmd/faults

# A fault is switched on by a file among the simulated tool's faults, or by one that lies beside this script.
fault() { [ -f "$faults/$1.uninstall" ] || [ -f "${0%/*}/$1.uninstall" ]; }

finish() {
    echo "$1"
    fault never-ending || echo 'Setup has ended.'
    exit "$2"
}

echo 'Removing the management tool'
! fault failing || finish 'Uninstall failed: the tool is in use.' 1
rm -f /usr/sbin/ocmanager/hbacmd
! fault killed || kill -KILL $$
finish 'Uninstall completed.' 0
