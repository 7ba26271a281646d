#!/bin/sh
# install.sh [-q]: puts the simulated management tool onto the server, in the version that the file beside this script
# says. With -q it asks nothing and chooses remote management, without it the tool manages this server alone.
set -u
faults=/var/lib/hbacmd/faults

# A fault is switched on by a file among the simulated tool's faults, or by one that lies beside this script.
fault() { [ -f "$faults/$1.install" ] || [ -f "${0%/*}/$1.install" ]; }

finish() {
    echo "$1"
    fault never-ending || echo 'Setup has ended.'
    exit "$2"
}

# REMOTE-OPERATION
configure() {
    printf '%s\n' ClientRemoteOperation:disabled ClientOperationMode:enabled ClientReadOnlyOperation:disabled \
        TcpSocketPortNumber:23333 >/etc/emulexDiscConfig
    printf '%s\n' "ServerRemoteOperation:$1" ManagementHost:false SecureManagement:disabled MngmtHostIpAddress:0 \
        ExclusiveHostMgmnt:false >/etc/emulexRMConfig
}

read -r version <"${0%/*}/version"
echo "Installing the management tool $version"
! fault failing || finish 'Install failed: a package is broken.' 1
mkdir -p /usr/sbin/ocmanager /var/lib/hbacmd
echo "$version" >/var/lib/hbacmd/version
! fault killed || kill -KILL $$
ln -sf /.machine/hbacmd /usr/sbin/ocmanager/hbacmd
case ${1-} in
-q) configure enabled ;;
*) echo 'Management mode: this server alone.' && configure disabled ;;
esac
finish 'Install completed.' 0
