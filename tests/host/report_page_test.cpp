// The page of a report: texts, timeline, limits and markup.
#include <gtest/gtest.h>

#include <stdexcept>

#include "host/outputs/report/activity.h"
#include "host/outputs/report/markup.h"
#include "host/outputs/report/page.h"
#include "host/outputs/report/report_page.h"
#include "host/outputs/report/settings.h"
#include "host/outputs/report/shown_size.h"
#include "host/outputs/report/timeline.h"
#include "tests/host/program.h"

namespace {

using namespace lm::host::events;
using namespace lm::host::outputs::report;
using namespace lm::host::source;
using namespace std::chrono_literals;
using program::Folder;

constexpr const char* kHostile = "<script>\"&'</script>";
constexpr const char* kHarmless = "&lt;script&gt;&quot;&amp;&#39;&lt;/script&gt;";

std::size_t count(const std::string& text, const std::string& what) {
  std::size_t found = 0;
  for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += what.size()) ++found;
  return found;
}

PageData page_data() {
  PageData data;
  data.source = kHostile;
  data.frame = {64, 48};
  data.rate = 25;
  data.frames = 500;
  data.frames_with_motion = 100;
  data.length = 20s;
  data.work = 2s;
  data.heat = "heat";
  data.heat_highest = 0.5;
  data.settings = {{kHostile, kHostile}};
  data.made = kHostile;
  for (const EventKind kind : {EventKind::kMotion, EventKind::kLight}) {
    PageEvent shown;
    shown.event.kind = kind;
    shown.event.start = 5s;
    shown.event.end = 7500ms;
    shown.event.regions = {kHostile};
    shown.event.started = shown.event.ended = kHostile;
    shown.picture = "picture";
    data.events.push_back(shown);
  }
  return data;
}

// Every open element is closed, in order, and there is no text outside.
void expect_balanced(const std::string& html) {
  std::vector<std::string> open;
  const std::string body = html.substr(html.find('>') + 1);  // after the document type
  const std::vector<std::string> empty{"meta", "img", "input", "polygon"};
  // Attribute values contain no angle brackets: they are escaped.
  for (std::size_t at = body.find('<'); at != std::string::npos; at = body.find('<', at + 1)) {
    const bool closes = body[at + 1] == '/';
    const std::size_t begin = at + (closes ? 2 : 1);
    const std::string name = body.substr(begin, body.find_first_of(" >\n/", begin) - begin);
    ASSERT_NE(body.find('>', begin), std::string::npos) << name;
    if (closes) {
      ASSERT_FALSE(open.empty()) << name;
      ASSERT_EQ(open.back(), name);
      open.pop_back();
    } else if (std::find(empty.begin(), empty.end(), name) == empty.end()) {
      open.push_back(name);
    }
  }
  EXPECT_TRUE(open.empty()) << open.back();
}

TEST(Markup, ShowsEveryTextAsItIs) {
  EXPECT_EQ(escaped(kHostile), kHarmless);
  EXPECT_EQ(escaped("a\tb\nc"), "a b c");
  EXPECT_EQ(escaped("Straße 3 – 漢字 😀"), "Straße 3 – 漢字 😀");
}

TEST(Markup, ReplacesWhatIsNoText) {
  const std::string gap = "\xef\xbf\xbd";
  EXPECT_EQ(escaped(std::string("a\0b", 3)), "a" + gap + "b");
  EXPECT_EQ(escaped("\x1b[1m"), gap + "[1m");
  EXPECT_EQ(escaped("\xff<"), gap + "&lt;");
  EXPECT_EQ(escaped("\xc3"), gap) << "half a character";
  EXPECT_EQ(escaped("\xc0\xbc"), gap + gap) << "a longer way to write '<'";
  EXPECT_EQ(escaped("\xed\xa0\x80"), gap + gap + gap) << "half of a pair";
}

TEST(Markup, FillsPlaceholders) {
  const Values values{{"a", "<"}, {"b", "{{a}}"}};
  EXPECT_EQ(fill("x{{a}}y{{{a}}}z", values), "x&lt;y<z");
  EXPECT_EQ(fill("{{b}}", values), "{{a}}") << "what was put in is not looked at again";
  EXPECT_THROW(fill("{{c}}", values), std::logic_error);
  EXPECT_THROW(fill("{{a", values), std::logic_error);
}

// The base64 of "Man" is "TWFu".
TEST(Markup, PicturesBecomePartOfThePage) {
  EXPECT_EQ(data_uri("Man"), "data:image/jpeg;base64,TWFu");
  EXPECT_EQ(data_uri("Ma"), "data:image/jpeg;base64,TWE=");
}

TEST(Page, IsWellFormedAndNeedsNothingElse) {
  const std::string html = render_page(page_data());
  expect_balanced(html);
  EXPECT_EQ(html.find("http"), std::string::npos);
  EXPECT_EQ(html.find("url("), std::string::npos);
  EXPECT_EQ(html.find("{{"), std::string::npos);
  EXPECT_EQ(count(html, "<img "), count(html, " src=\"data:image/jpeg;base64,"));
  EXPECT_EQ(count(html, "<img "), count(html, " alt=\""));
}

// The title occurs twice; once each the name and value of the setting, what made the page, and of each event
// the region and both sentences.
TEST(Page, EscapesMarkupInTexts) {
  const std::string html = render_page(page_data());
  EXPECT_EQ(html.find("<script"), std::string::npos);
  EXPECT_EQ(count(html, kHarmless), 2U + 2 + 1 + 2 * 3);
}

TEST(Page, ShowsTheFigures) {
  const std::string html = render_page(page_data());
  for (const char* text :
       {"<dd>2<small>1 motion, 1 lighting</small>", "<dd>2.5 s<small>12 % of the video</small>",
        "<dd>20.0 s<small>500 frames, 100 with boxes</small>",
        "<dd>250 fps<small>10 × real time, 2.0 s</small>", "64 × 48 pixels, 25 frames per second"}) {
    EXPECT_NE(html.find(text), std::string::npos) << text;
  }
}

TEST(Page, SaysWhatObjectsDid) {
  PageData data = page_data();
  Event& event = data.events[0].event;
  event.objects = {{3, 5s, 7s, {}}, {4, 5s, 6s, {}}};
  event.visits = {{kHostile, 3, 5500ms, 7s}};
  event.crossings = {{"gate", 3, 5200ms, lm::host::detector::Side::kLeft}};
  const std::string page = render_page(data);
  EXPECT_NE(page.find("<dt>Dwell time</dt><dd>2.0 s</dd>"), std::string::npos);
  const std::size_t crossing = page.find("<li>Object 3 crossed gate to the left: 0:05.2.</li>");
  ASSERT_NE(crossing, std::string::npos);
  EXPECT_GT(page.find(std::string("<li>Object 3 in ") + kHarmless + ": 0:05.5 to 0:07.0.</li>"), crossing);
  event.visits.assign(40, {"gate", 3, 5500ms, 7s});
  EXPECT_NE(render_page(data).find("<li>29 more.</li>"), std::string::npos) << "of 41, 12 are shown";
}

TEST(Page, SaysWhatItLeavesOut) {
  PageData data = page_data();
  data.events[1].picture.clear();
  data.more_events = 7;
  const std::string html = render_page(data);
  EXPECT_NE(html.find("1 event has no picture"), std::string::npos) << html;
  EXPECT_NE(html.find("7 later events are not listed"), std::string::npos);
  EXPECT_NE(html.find("<dd>9<small>"), std::string::npos) << "the headline counts them";
}

TEST(Page, WithoutEventsSaysSo) {
  PageData data = page_data();
  data.events.clear();
  const std::string html = render_page(data);
  expect_balanced(html);
  EXPECT_NE(html.find("No events were found."), std::string::npos);
}

// From 5 to 7.5 seconds of 20: starts at a quarter of the width and is an eighth wide.
TEST(Timeline, PlacesEventsByTheirTimes) {
  const std::string html = timeline(page_data());
  EXPECT_EQ(count(html, "left:min(25.00%,100% - 4px);width:12.50%;--row:0\""), 2U);
  EXPECT_NE(html.find("aria-label=\"Event 1, motion, 0:05 to 0:07\""), std::string::npos);
  EXPECT_NE(html.find("href=\"#event-2\""), std::string::npos);
  EXPECT_NE(render_page(page_data()).find("<li id=\"event-2\" class=\"light\""), std::string::npos);
}

TEST(Timeline, HasARowForEachEventAtTheSameTime) {
  PageData data = page_data();
  data.events[1].event.kind = EventKind::kMotion;  // both from 5 to 7.5 s
  data.events.push_back(data.events[0]);
  data.events[2].event.start = 8s;
  const std::string html = timeline(data);
  EXPECT_EQ(count(html, "--row:0"), 2U);
  EXPECT_EQ(count(html, "--row:1"), 1U);
  EXPECT_NE(html.find("--rows:2"), std::string::npos);
}

TEST(Page, CountsTimeWithSeveralEventsOnce) {
  PageData data = page_data();
  data.events[1].event.kind = EventKind::kMotion;
  data.events[1].event.start = 6s;
  data.events[1].event.end = 9s;
  EXPECT_NE(render_page(data).find("<dd>4.0 s<small>20 % of the video</small>"), std::string::npos);
}

TEST(Timeline, HasRoundTimesOnItsAxis) {
  using Times = std::vector<std::chrono::microseconds>;
  EXPECT_EQ(axis_times(20s, 9), (Times{0s, 5s, 10s, 15s, 20s}));
  EXPECT_EQ(axis_times(500ms, 9), (Times{0s}));
  EXPECT_EQ(axis_times(80s, 9), (Times{0s, 10s, 20s, 30s, 40s, 50s, 60s, 70s, 80s}));
  EXPECT_EQ(axis_times(30h, 9).size(), 6U) << "every six hours";
  EXPECT_LE(axis_times(1000h, 9).size(), 9U);
}

// 1:30 is at 92.98 % of 96.8 s and at 93.07 % of 96.7 s, where its label would meet that of the end.
TEST(Timeline, LeavesOutTimesNextToTheEnd) {
  PageData data = page_data();
  data.length = 96'800ms;
  EXPECT_EQ(count(timeline(data), "left:92.98%\">1:30</span>"), 1U);
  data.length = 96'700ms;
  const std::string html = timeline(data);
  EXPECT_EQ(count(html, ">1:30</span>"), 0U);
  EXPECT_EQ(count(html, ">1:15</span>"), 1U);
  EXPECT_EQ(count(html, "left:100%\">1:36</span>"), 1U);
}

TEST(Activity, KeepsTheLargestShareOfEachSpan) {
  Activity activity;
  activity.add(0ms, EventKind::kMotion, 0.1);
  activity.add(90ms, EventKind::kMotion, 0.3);
  activity.add(100ms, EventKind::kMotion, 0.2);
  activity.add(200ms, EventKind::kLight, 0.9);
  EXPECT_EQ(activity.shares(EventKind::kMotion), (std::vector<double>{0.3, 0.2}));
  EXPECT_EQ(activity.shares(EventKind::kLight), (std::vector<double>{0, 0, 0.9}));
}

// 800 spans of 0.1 s cover 80 s; at 80 s they become 0.2 s long.
TEST(Activity, HasBoundedMemory) {
  Activity activity;
  activity.add(100ms, EventKind::kMotion, 0.5);
  activity.add(200ms, EventKind::kMotion, 0.3);
  activity.add(79'900ms, EventKind::kMotion, 0.4);
  EXPECT_EQ(activity.span(), 100ms);
  activity.add(80s, EventKind::kMotion, 0.6);
  EXPECT_EQ(activity.span(), 200ms);
  const auto& shares = activity.shares(EventKind::kMotion);
  ASSERT_EQ(shares.size(), 401U);
  EXPECT_EQ(shares[0], 0.5) << "the later of two";
  EXPECT_EQ(shares[1], 0.3) << "the earlier of two";
  EXPECT_EQ(shares[399], 0.4);
  EXPECT_EQ(shares[400], 0.6);
  activity.add(2400h, EventKind::kMotion, 0.7);
  EXPECT_LE(shares.size(), Activity::kMostSpans);
}

TEST(ShownSize, HasSquarePixelsAndALimit) {
  EXPECT_EQ(shown_size({720, 576}, {16, 15}, 2000), cv::Size(768, 576));
  EXPECT_EQ(shown_size({1920, 1080}, {1, 1}, 480), cv::Size(480, 270));
  EXPECT_EQ(shown_size({64, 48}, {1, 1}, 480), cv::Size(64, 48)) << "never larger";
  EXPECT_EQ(shown_size({9000, 2}, {1, 1}, 450), cv::Size(450, 1));
}

TEST(Settings, AreTheRulesAndTheDocuments) {
  const auto shown = shown_settings(R"({"sensitivity":"4","roi":[{"name":"door"},{"name":"<b>"}],"x":{}})",
                                    {.min_event = 0.5, .gap = 2});
  using Shown = std::vector<std::pair<std::string, std::string>>;
  EXPECT_EQ(shown, (Shown{{"Minimum length of an event", "0.500 s"},
                          {"Quiet time that ends an event", "2.000 s"},
                          {"roi", "door, <b>"},
                          {"sensitivity", "4"}}));
}

TEST(ReportPage, KeepsPicturesOfTheFirstEventsAndCountsTheRest) {
  const Folder folder;
  SourceInfo source;
  source.size = {4, 4};
  ReportPage report(folder / "a.html", source, "{}", {});
  Frame frame;
  frame.image = cv::Mat::zeros(4, 4, CV_8UC3);
  report.frame(frame, {});
  const std::size_t events = ReportPage::kMostEvents + 3;
  for (std::size_t i = 0; i < events; ++i) {
    Event event;
    event.id = std::to_string(i);
    report.begun(event);
    report.ended(event);
  }
  report.finish();
  report.commit();
  const std::string html = program::read(folder / "a.html");
  EXPECT_EQ(count(html, "<li id="), ReportPage::kMostEvents);
  EXPECT_EQ(count(html, "<img "), ReportPage::kMostPictures + 1) << "and the heat map";
  EXPECT_NE(html.find("4700 events have no picture"), std::string::npos);
  EXPECT_NE(html.find("3 later events are not listed"), std::string::npos);
}

TEST(ReportPage, OfARunShowsWhatHappened) {
  const Folder folder;
  const auto outcome = program::run_fake({"-o", "/dev/null", "--report", folder / "a.html", "--heatmap",
                                          folder / "a.png", "--snapshots", folder / "shots"});
  ASSERT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(folder.names(), (std::vector<std::string>{"a.html", "a.png", "shots"}));
  const std::string html = program::read(folder / "a.html");
  expect_balanced(html);
  EXPECT_NE(html.find("500 frames, 450 with boxes"), std::string::npos);
  EXPECT_EQ(count(html, "<li id=\"event-"), 1U) << "boxes in nine of ten frames are one event";
  // The first box is in the second frame.
  EXPECT_TRUE(std::filesystem::exists(folder / "shots/00h00m00.040s-0001-motion.jpg"));
}

TEST(ReportPage, IsRemovedWhenTheRunFails) {
  const Folder folder;
  program::write(folder / "c.json", R"({"comment": "frame throws"})");
  const auto outcome = program::run_fake(
      {"-c", folder / "c.json", "--report", folder / "a.html", "--heatmap", folder / "a.png", "-q"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(folder.names(), std::vector<std::string>{"c.json"});
}

}  // namespace
