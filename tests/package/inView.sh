#!/bin/bash
# inView.sh FOLDER REPOSITORY COMMAND...: runs the command as root of this machine as it is, except that what it changes
# is forgotten afterwards. It finds its changes in /tmp/changes, and what was there before in /tmp/before. Called in a
# mount namespace of its own.
set -euo pipefail
folder=$1 repository=$2
shift 2
mount -t tmpfs none "$folder"
mkdir "$folder"/{changes,work,root}
mount -t overlay overlay -o "lowerdir=/,upperdir=$folder/changes,workdir=$folder/work" "$folder/root"
# What is mounted elsewhere is not part of it.
mount -t tmpfs none "$folder/root/tmp"
mkdir -p "$folder/root$repository"
for directory in /proc /dev /sys "$repository"; do
    mount --rbind "$directory" "$folder/root$directory"
done
mkdir "$folder"/root/tmp/{changes,before}
mount --bind "$folder/changes" "$folder/root/tmp/changes"
mount --bind / "$folder/root/tmp/before"
exec chroot "$folder/root" "$@"
