#include "AppTestSupport.h"
#include "CoroTest.h"
#include "FileOpenRouter.h"
#include "MemoryCredentialStore.h"

#include <QDir>

#include <gtest/gtest.h>

TEST(FileOpenRouter, FilesWaitUntilSomebodySignsIn)
{
    IsolatedPrefs p;
    MemoryCredentialStore creds;
    AppModel app(*p.prefs, creds, envWith({}));
    run(app.start());
    FileOpenRouter router;
    router.follow(&app);
    QSignalSpy wanted(&router, &FileOpenRouter::importWanted);

    router.openArguments({"--first-frame-exit", "DJI_0001.MP4", "/cards/DJI_0002.LRF", "file:///cards/x.SRT"});
    ASSERT_EQ(router.pending().size(), 3);
    EXPECT_EQ(router.pending()[0], QUrl::fromLocalFile(QDir::current().absoluteFilePath("DJI_0001.MP4")));
    EXPECT_EQ(router.pending()[1], QUrl::fromLocalFile("/cards/DJI_0002.LRF"));
    EXPECT_EQ(router.pending()[2], QUrl("file:///cards/x.SRT"));
    EXPECT_EQ(wanted.count(), 0);

    app.signIn("http://127.0.0.1:1", "tok");
    EXPECT_EQ(wanted.count(), 1);

    // The import window drains the list; signing in again with nothing waiting asks nothing.
    EXPECT_EQ(router.take().size(), 3);
    EXPECT_FALSE(router.hasPending());
    app.signOut();
    app.signIn("http://127.0.0.1:1", "tok");
    EXPECT_EQ(wanted.count(), 1);

    // Signed in already: a newly opened file asks at once.
    router.open({QUrl::fromLocalFile("/cards/DJI_0003.MP4")});
    EXPECT_EQ(wanted.count(), 2);
}
