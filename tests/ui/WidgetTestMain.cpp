// Widget tests run without a display: the offscreen platform is chosen before the
// application object exists (test discovery also runs these binaries at build time).

#include <gtest/gtest.h>

#include "ui/SheetwrightApplication.h"

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    ui::SheetwrightApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
