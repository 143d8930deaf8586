#include "screen/Page.h"

#include "harness/EventLoop.h"
#include "harness/Files.h"
#include "harness/TemporaryDirectory.h"
#include "support/Environment.h"
#include "support/PageServer.h"
#include "support/PageWatcher.h"
#include "ui/VLWebViewController.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <ostream>
#include <utility>

#include <gmock/gmock.h>

#include <QApplication>
#include <QWidget>

namespace velmora::test {

namespace {

using screen::Page;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// Before any other test of this program makes a page.
TEST(WebPageEngine, ComesIntoTheProcessWithTheFirstPage) {
    const auto hasEngine = [] { return contentOf("/proc/self/maps").find("WebEngine") != std::string::npos; };
    EXPECT_FALSE(hasEngine());
    const auto page = Page::make();
    EXPECT_TRUE(hasEngine());
}

std::vector<std::filesystem::path> filesUnder(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file()) files.push_back(entry.path());
    }
    return files;
}

/// A page of the real engine, whose commands are refused as the library refuses them.
class WebPage : public testing::Test {
protected:
    WebPage() {
        watcher->allow = [](const std::string& url) { return !url.starts_with("velmora:"); };
        page->setDelegate(watcher);
    }

    /// Loads it; true when the end of the load was reported.
    bool loads(const std::string& url) {
        page->load(url);
        return runUntil([&] { return watcher->endsOf(url) > 0; });
    }

    /// Loads a page beside this one: what this one had to report by then has been reported.
    void fence() {
        const auto beside = Page::make();
        const auto ends = std::make_shared<PageWatcher>();
        beside->setDelegate(ends);
        beside->load(server.url("/plain?beside"));
        EXPECT_TRUE(runUntil([&] { return !ends->ends.empty(); }));
    }

    /// The first command that the page at `path` sends.
    std::string commandOf(const std::string& path) {
        const auto isCommand = [](const std::string& url) { return url.starts_with("velmora:"); };
        const auto found = [&] {
            return std::find_if(watcher->starts.begin(), watcher->starts.end(), isCommand);
        };
        page->load(server.url(path));
        const bool came = runUntil([&] { return found() != watcher->starts.end(); });
        return came ? *found() : "no command came";
    }

    PageServer server;
    std::shared_ptr<PageWatcher> watcher = std::make_shared<PageWatcher>();
    std::unique_ptr<Page> page = Page::make();
};

struct Way {
    const char* name;
    const char* html;

    friend void PrintTo(const Way& way, std::ostream* stream) { *stream << way.name; }
};

constexpr Way kWays[] = {
    {"Script", "<script>location = 'velmora://close'</script>"},
    {"ScriptAtTheEnd", "<script>onload = () => location.replace('velmora://close')</script>"},
    {"ScriptLater", "<script>onload = () => setTimeout(() => location = 'velmora://close')</script>"},
    {"Link", "<a id=a href='velmora://close'>a</a><script>onload = () => a.click()</script>"},
    {"LinkToAWindow",
     "<a id=a href='velmora://close' target=_blank>a</a><script>onload = () => a.click()</script>"},
    {"Frame", "<iframe src='velmora://close'></iframe>"},
    {"ScriptInAFrame", "<iframe src='/frame'></iframe>"},
    {"ScriptOfAFrame", "<iframe src='/top'></iframe>"},
    {"Window", "<script>onload = () => window.open('velmora://close')</script>"},
    {"Form",
     "<form id=f method=post action='velmora://close'></form><script>onload = () => f.submit()</script>"},
    {"Refresh", "<meta http-equiv=refresh content='0;url=velmora://close'>"},
    {"Redirect", "<a id=a href='/redirect?velmora://close'>a</a><script>onload = () => a.click()</script>"},
};

class EveryWay : public WebPage, public testing::WithParamInterface<Way> {};

TEST_P(EveryWay, ToNavigateIsReportedOnceAndMayBeRefused) {
    const auto url = server.url("/page");
    server.setPage("/page", GetParam().html);
    ASSERT_TRUE(loads(url));
    ASSERT_TRUE(runUntil([&] { return watcher->startsOf("velmora://close") > 0; }));
    fence();

    EXPECT_EQ(watcher->startsOf("velmora://close"), 1);
    EXPECT_EQ(watcher->startsOf(url), 1);
    EXPECT_EQ(watcher->endsOf(url), 1);
    EXPECT_THAT(watcher->ends, ElementsAre(url));
}

INSTANTIATE_TEST_SUITE_P(Page, EveryWay, testing::ValuesIn(kWays),
                         [](const auto& way) { return way.param.name; });

TEST_F(WebPage, CommandsArriveAsTheyWereWrittenSaveForTheCaseOfSchemeAndHost) {
    const std::vector<std::pair<std::string, std::string>> written{
        {"velmora://dismiss", "velmora://dismiss"},
        {"velmora://replay/path?x#part", "velmora://replay/path?x#part"},
        {"velmora://open?type=a%20b&target=http%3A%2F%2Fx%2F%3Fq%3D1&type=c",
         "velmora://open?type=a%20b&target=http%3A%2F%2Fx%2F%3Fq%3D1&type=c"},
        {"velmora://open?target=%zz&type=100%", "velmora://open?target=%25zz&type=100%25"},
        {"velmora://open?description=ä {1}", "velmora://open?description=%C3%A4%20%7B1%7D"},
        {"velmora:close", "velmora:close"},
        {"velmora://", "velmora://"},
        {"Velmora://Close", "velmora://close"},
    };
    for (const auto& [url, reported] : written) {
        server.setPage("/page", "<meta charset=utf-8><script>location = '" + url + "'</script>");
        watcher->starts.clear();
        EXPECT_EQ(commandOf("/page"), reported);
    }
}

TEST_F(WebPage, ACommandMayBeAMegabyteLong) {
    server.setPage("/page", "<script>location = 'velmora://open?target=' + 'x'.repeat(1 << 20)</script>");
    EXPECT_EQ(commandOf("/page"), "velmora://open?target=" + std::string(1 << 20, 'x'));
}

TEST_F(WebPage, TheEndOfALoadIsReportedOnceWithTheUrlThatWasLoaded) {
    server.setPage("/loader", "<img src=/plain><iframe src=/plain></iframe><iframe src=/frame></iframe>");
    const std::vector<std::pair<std::string, std::string>> loads{
        {"/plain?a=b#part", "/plain?a=b#part"},
        {"/redirect?/redirect?/plain?c", "/plain?c"},
        {"/loader", "/loader"},
        {"/missing", "/missing"},
    };
    for (const auto& [loaded, reported] : loads) {
        watcher->ends.clear();
        page->load(server.url(loaded));
        EXPECT_TRUE(runUntil([&] { return !watcher->ends.empty(); })) << loaded;
        fence();
        EXPECT_THAT(watcher->ends, ElementsAre(server.url(reported)));
    }
}

TEST_F(WebPage, APageThatMovesOnWhileItLoadsEndsWhereItArrives) {
    const auto next = server.url("/plain?next");
    for (const std::string script :
         {"location = '/plain?next'", "onload = () => location = '/plain?next'",
          "onload = () => { location = 'velmora://close'; location = '/plain?next' }",
          "onload = () => setTimeout(() => location = '/plain?next')", "window.open('/plain?next')"}) {
        server.setPage("/page", "<script>" + script + "</script><p>A page.");
        watcher->ends.clear();
        page->load(server.url("/page"));
        EXPECT_TRUE(runUntil([&] { return watcher->endsOf(next) > 0; })) << script;
        fence();
        EXPECT_EQ(watcher->endsOf(next), 1) << script;
        EXPECT_LE(watcher->endsOf(server.url("/page")), 1) << script;
    }
}

TEST_F(WebPage, APageCannotMakeUpTheEndOfALoad) {
    const auto url = server.url("/page");
    server.setPage("/page", R"(<script>
        const said = [];
        console.info = text => said.push(text);
        addEventListener('load', event => {
            event.stopImmediatePropagation();
            dispatchEvent(new Event('load'));
            setTimeout(() => location = 'velmora://said?' + said.length);
        }, {capture: true, once: true});
    </script>)");
    EXPECT_EQ(commandOf("/page"), "velmora://said?0");
    fence();
    EXPECT_THAT(watcher->ends, ElementsAre(url));
}

TEST_F(WebPage, ALoadThatDoesNotEndOrFailsOrIsRefusedReportsNoEnd) {
    const auto refused = server.url("/plain?refused");
    watcher->allow = [&](const std::string& url) { return url != refused; };
    server.setPage("/slow", "<p>a</p><img src=/hang>");
    for (const std::string path : {"/slow", "/hang", "/nothing", "/breaks"}) {
        page->load(server.url(path));
        ASSERT_TRUE(runUntil([&] { return server.requestsOf(path) > 0; })) << path;
        fence();
        EXPECT_THAT(watcher->ends, IsEmpty()) << path;
    }
    for (const auto& url : {refused, std::string("http://127.0.0.1:1/"), std::string("http://no host/"),
                            std::string("tel:123"), std::string("plain"), std::string()}) {
        page->load(url);
        fence();
        EXPECT_THAT(watcher->ends, IsEmpty()) << url;
    }
    EXPECT_EQ(server.requestsOf("/plain?refused"), 0);
}

TEST_F(WebPage, APageIsGrantedNothingAndMakesNobodyWait) {
    server.setPage("/page", R"(<script>
        const answers = [];
        const note = name => value => answers.push(name + ':' + (value && value.name || value));
        onload = async () => {
            await navigator.mediaDevices.getUserMedia({video: true}).then(note('camera'), note('camera'));
            await navigator.mediaDevices.getUserMedia({audio: true}).then(note('sound'), note('sound'));
            await navigator.mediaDevices.getDisplayMedia().then(note('screen'), note('screen'));
            await new Promise(done => navigator.geolocation.getCurrentPosition(done, done))
                .then(error => note('place')(error.code));
            await Notification.requestPermission().then(note('notes'));
            const opened = window.open('');
            note('alert')(alert('a'));
            note('confirm')(confirm('a'));
            note('prompt')(prompt('a'));
            await fetch('file:///etc/hostname').then(note('file'), note('file'));
            while (opened && !opened.closed) await new Promise(done => setTimeout(done));
            note('window')('closed');
            note('whole screen')(document.fullscreenEnabled);
            location = 'velmora://open?' + answers.join('&');
        };
    </script>)");
    // The engine puts some of these off until the page is seen.
    page->widget()->show();
    EXPECT_THAT(commandOf("/page"),
                AllOf(HasSubstr("camera:Not"), HasSubstr("sound:Not"), HasSubstr("screen:Not"),
                      HasSubstr("place:1"), HasSubstr("notes:denied"), HasSubstr("window:closed"),
                      HasSubstr("alert:undefined"), HasSubstr("confirm:false"), HasSubstr("prompt:null"),
                      HasSubstr("file:TypeError"), HasSubstr("whole%20screen:false")));
}

TEST_F(WebPage, NothingStaysOnDisk) {
    server.setPage("/page", "<script>localStorage.a = 1; document.cookie = 'a=b;max-age=9999';"
                            "const to = url => { const a = document.createElement('a'); a.href = url;"
                            "a.download = 'file'; a.click(); };"
                            "onload = () => to('/download')</script>");
    ASSERT_TRUE(loads(server.url("/page")));
    ASSERT_TRUE(runUntil([&] { return server.requestsOf("/download") > 0; }));
    fence();
    EXPECT_THAT(filesUnder(std::getenv("HOME")), IsEmpty());
}

TEST_F(WebPage, APageMayGoInTheMiddleOfACall) {
    const auto url = server.url("/page");
    server.setPage("/page", "<script>onload = () => location = 'velmora://close'</script>");
    watcher->allow = [&](const std::string& start) {
        if (start == "velmora://close") page.reset();
        return true;
    };
    page->load(url);
    ASSERT_TRUE(runUntil([&] { return page == nullptr; }));

    page = Page::make();
    page->setDelegate(watcher);
    watcher->atEnd = [&] { page.reset(); };
    page->load(server.url("/plain"));
    EXPECT_TRUE(runUntil([&] { return page == nullptr; }));
}

TEST_F(WebPage, APageTakesItsWidgetOutOfWhatItLaysIn) {
    QWidget parent;
    page->widget()->setParent(&parent);
    // A file that is let go over it would take the place of the page.
    EXPECT_FALSE(page->widget()->acceptDrops());
    ASSERT_TRUE(loads(server.url("/plain")));
    page.reset();
    EXPECT_THAT(parent.children(), IsEmpty());

    page = Page::make();
    {
        QWidget shortLived;
        page->widget()->setParent(&shortLived);
    }
    page->load(server.url("/plain?gone"));
    EXPECT_EQ(page->widget(), nullptr);
}

TEST_F(WebPage, AnAuthorityOfTheDeveloperIsTrustedWhenItIsNamedAndOnlyForItsHost) {
    const auto mine = Certificates::makeFor("127.0.0.1");
    const auto elsewhere = Certificates::makeFor("elsewhere.example");
    const auto past = Certificates::makeFor("127.0.0.1", -1);
    const struct {
        std::shared_ptr<Certificates> served;
        const char* named;
        bool loads;
    } cases[] = {
        {mine, nullptr, false},
        {mine, elsewhere->authorityFile().c_str(), false},
        {mine, "/nowhere.pem", false},
        {elsewhere, elsewhere->authorityFile().c_str(), false},
        {past, past->authorityFile().c_str(), false},
        {mine, mine->authorityFile().c_str(), true},
    };
    for (const auto& [served, named, loaded] : cases) {
        const Environment variable("VELMORA_CA_FILE", named);
        const PageServer secure(served);
        const auto url = secure.url("/plain");
        page->load(url);
        ASSERT_TRUE(runUntil([&] { return secure.connections() > 0; }));
        fence();
        EXPECT_EQ(loaded ? runUntil([&] { return watcher->endsOf(url) > 0; }) : watcher->endsOf(url) > 0,
                  loaded);
        EXPECT_EQ(secure.requestsOf("/plain"), loaded ? 1 : 0);
    }
}

TEST_F(WebPage, APageIsDrawnOverTheWholeViewOfItsController) {
    server.setPage("/page", "<meta charset=utf-8><meta name=viewport content='width=device-width'>"
                            "<body style='margin:0;height:100vh;background:#00ff00'><h1>An ad</h1>");
    const auto controller = std::make_shared<VLWebViewController>();
    controller->setUrlString(server.url("/page"));
    auto* view = controller->view();
    const auto size = VLWebViewController::screenSize();
    view->resize(static_cast<int>(size.width), static_cast<int>(size.height));
    view->show();
    const auto isDrawn = [&] {
        const auto picture = view->grab().toImage();
        return picture.pixelColor(picture.width() - 2, picture.height() - 2) == QColor(0, 255, 0) &&
               picture.pixelColor(1, picture.height() - 2) == QColor(0, 255, 0);
    };
    EXPECT_TRUE(runUntil(isDrawn));
    EXPECT_EQ(view->size(), controller->webView().widget()->size());
}

}  // namespace

}  // namespace velmora::test

int main(int count, char** arguments) {
    const velmora::test::TemporaryDirectory home;
    for (const auto* name :
         {"HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_CONFIG_HOME", "XDG_DOWNLOAD_DIR"}) {
        setenv(name, home.path().c_str(), 1);
    }
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    setenv("QTWEBENGINE_DISABLE_SANDBOX", "1", 1);
    // A camera and a microphone, to be denied.
    setenv("QTWEBENGINE_CHROMIUM_FLAGS", "--use-fake-device-for-media-stream", 1);
    testing::InitGoogleMock(&count, arguments);
    const QApplication application(count, arguments);
    return RUN_ALL_TESTS();
}
