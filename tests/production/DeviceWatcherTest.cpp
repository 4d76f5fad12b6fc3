#include "link/DeviceWatcher.h"

#include <gtest/gtest.h>

#include <QSignalSpy>

#include "../link/QtApp.h"
#include "link/ModuleRegistry.h"

namespace sb {
namespace {

// A virtual module that appears and leaves, as its registry entry does.
TEST(DeviceWatcher, AModuleComingAndGoingIsOneChangeEach) {
    test::QtApp();
    DeviceWatcher watcher;
    QSignalSpy changed(&watcher, &DeviceWatcher::portsChanged);
    PublishModule("watched", {"/dev/null", "USB\\VID_0483&PID_5740\\W1", "watched"});
    ASSERT_TRUE(changed.wait(5000));
    WithdrawModule("watched");
    ASSERT_TRUE(changed.wait(5000));
    EXPECT_EQ(changed.count(), 2);
}

}  // namespace
}  // namespace sb
