#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "machines/replay.h"
#include "tests/machines/outside.h"

namespace kvl::test {
namespace {

// What a change of the boot files needs of a server.
Outcome runOn(const std::string& machine, const std::string& script) {
    machines::PrivateRootOptions options;
    options.recording = machines::findRecording(machine);
    return runInside(options, "image=/boot/initramfs-$(uname -r).img\n" + script);
}

TEST(BootFiles, AreThoseOfRelease6OnTheServerWithAllAdapters) {
    const Outcome outcome =
        runOn("adapters-mixed", "cut -d ' ' -f 6-7 /etc/redhat-release; ls /etc/depmod.d; cat $image");
    EXPECT_EQ(outcome.output,
              "release 6.4\ndist.conf\nThe RAM disk image of 2.6.32-358.el6.x86_64 as the installation made it\n");
}

TEST(BootFiles, AreThoseOfRelease5OnTheServerWithFcAdapters) {
    const Outcome outcome = runOn("adapters-fc",
                                  "cut -d ' ' -f 6-7 /etc/redhat-release; ls /boot/initrd-$(uname -r).img\n"
                                  "ls /etc/depmod.d; dracut; echo $?");
    EXPECT_EQ(outcome.output, "release 5.8\n/boot/initrd-2.6.18-308.el5.img\ndepmod.conf.dist\n127\n");
}

TEST(BootFiles, HaveADepmodThatCanBeMadeToFail) {
    for (const char* machine : {"adapters-mixed", "adapters-fc"}) {
        EXPECT_EQ(runOn(machine,
                        "depmod -a; echo $?; echo 3 >/.machine/commands/sbin/depmod/-a.status\n"
                        "depmod -a; echo $?; cat /.machine/log")
                      .output,
                  "0\n3\n/bin/uname -r\n/sbin/depmod -a\n/sbin/depmod -a\n")
            << machine;
    }
}

TEST(Dracut, WritesTheImageOfTheRunningKernelWithItsOverrides) {
    const Outcome outcome = runOn("adapters-mixed",
                                  "echo 'override lpfc * weak-updates/elx-lpfc' >/etc/depmod.d/elxlpfc.conf\n"
                                  "mv -f $image $image.org; dracut $image; echo $?; cat $image; cat /.machine/log");
    EXPECT_EQ(outcome.output,
              "0\n"
              "The simulated RAM disk image of 2.6.32-358.el6.x86_64\n"
              "# override default search ordering for kmod packaging\n"
              "search updates extra built-in weak-updates\n"
              "override lpfc * weak-updates/elx-lpfc\n"
              "End of the image\n"
              "/bin/uname -r\n"
              "/sbin/dracut /boot/initramfs-2.6.32-358.el6.x86_64.img\n"
              "/bin/uname -r\n");
    EXPECT_EQ(outcome.errors, "");
}

TEST(Dracut, WritesTheImageOfAnotherKernelIfToldTo) {
    EXPECT_EQ(runOn("adapters-mixed", "dracut /tmp/image 2.6.32-279.el6.x86_64; head -n 1 /tmp/image").output,
              "The simulated RAM disk image of 2.6.32-279.el6.x86_64\n");
}

TEST(Dracut, OverwritesNoImage) {
    const Outcome outcome =
        runOn("adapters-mixed", "cp $image /tmp/before; dracut $image; echo $?; /bin/busybox cmp $image /tmp/before");
    EXPECT_EQ(outcome.output, "1\n");
    EXPECT_EQ(outcome.errors,
              "dracut: Will not override existing initramfs (/boot/initramfs-2.6.32-358.el6.x86_64.img) without "
              "--force\n");
}

TEST(Dracut, FailsWithAStatusAndWritesNothing) {
    const Outcome outcome =
        runOn("adapters-mixed",
              "mkdir /var/lib/dracut; : >/var/lib/dracut/failing; rm $image; dracut $image; echo $?\n"
              "echo 7 >/var/lib/dracut/failing; dracut $image; echo $?; [ -e $image ] || echo none");
    EXPECT_EQ(outcome.output, "1\n7\nnone\n");
    EXPECT_EQ(outcome.errors, "dracut: no module could be installed\ndracut: no module could be installed\n");
}

TEST(Dracut, LeavesHalfAnImageWhereTheDiskIsFull) {
    const Outcome outcome = runOn("adapters-mixed",
                                  "mkdir /var/lib/dracut; : >/var/lib/dracut/full; rm $image; dracut $image\n"
                                  "echo $?; cat $image");
    EXPECT_EQ(outcome.output, "1\nThe simulated RAM disk image of 2.6.32-358.el6.x86_64\n");
    EXPECT_EQ(outcome.errors, "dracut: /boot/initramfs-2.6.32-358.el6.x86_64.img: No space left on device\n");
}

TEST(Dracut, RefusesWhatMakesNoSense) {
    const Outcome outcome =
        runOn("adapters-mixed", "dracut; echo $?; dracut --force; echo $?; dracut /nowhere/image; echo $?");
    EXPECT_EQ(outcome.output, "1\n1\n1\n");
    EXPECT_THAT(outcome.errors, testing::StartsWith("dracut: usage: dracut IMAGE [KERNEL]\ndracut: usage: dracut "
                                                    "IMAGE [KERNEL]\n"));
    EXPECT_THAT(outcome.errors, testing::EndsWith("dracut: /nowhere/image can't be written\n"));
}

}  // namespace
}  // namespace kvl::test
