#include "feeds/text/markup.h"

#include <gtest/gtest.h>

#include "feeds/text/plain_text.h"

namespace linewatch {
namespace {

struct MarkupRow {
  const char* name;
  const char* markup;
  const char* text;
};

void expectPlain(std::initializer_list<MarkupRow> rows) {
  for (const MarkupRow& row : rows) EXPECT_EQ(plainText(row.markup), row.text) << row.name;
}

TEST(Markup, IsUndone) {
  expectPlain({
      {"no markup", "No trains", "No trains"},
      {"inline tags", "<b>No</b> <span class=\"x\">trains</span>", "No trains"},
      {"paragraphs and lines", "<p>One</p><p>Two<br>Three</p>", "One\n\nTwo\nThree"},
      {"two line breaks", "One<br />\r\n<br />\r\nTwo", "One\n\nTwo"},
      {"list", "Stops:<ul><li>A</li>\n<li>B</li></ul>", "Stops:\n• A\n• B"},
      {"table", "<table><tr><td>5</td><td>Zoo</td></tr><tr><td>6</td></tr></table>", "5 Zoo\n6"},
      {"hidden elements", "<style>p { color: red }</style>Now<script>alert('<b>')</script>!", "Now!"},
      {"comment", "a<!-- <b>hidden</b> -->b", "ab"},
      {"entities", "Caf&eacute; &amp; Bar&nbsp;&#8211; 5&#x2019;&#150;", "Café & Bar – 5’–"},
      {"escaped twice", "Works.&lt;br /&gt;Buses.", "Works.\nBuses."},
      {"entity escaped twice", "D&amp;eacute;viation", "Déviation"},
      {"numbers without a character", "&#0;&#xD800;&#x110000;", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
      {"block with a space alone", "<div>One</div>\n<div>&nbsp;</div>\n<div>Two</div>", "One\n\nTwo"},
  });
}

TEST(Markup, LineEndsOfTheSourceAreSpaces) {
  expectPlain({
      {"inside a sentence", "Closed for\r\n\t\tthe lines\r\n\t5, \r\n\t7 and 9<br><br>\r\n",
       "Closed for the lines 5, 7 and 9"},
      {"between inline tags", "<b>From Monday</b>\ntrams stop at the pier.",
       "From Monday trams stop at the pier."},
      {"escaped markup", "Closed\nfor works.&lt;br&gt;Sorry.", "Closed for works.\nSorry."},
      {"empty line without tags that break", "<b>Works</b>\n\nBuses run.", "Works\n\nBuses run."},
      {"empty line among tags that break", "<b>Works</b>\n\nat night<br>Buses run.",
       "Works at night\nBuses run."},
      {"no tags", "Works\nBuses run &amp; stop.", "Works\nBuses run & stop."},
  });
}

TEST(Markup, WhatOnlyLooksLikeMarkupStays) {
  expectPlain({
      {"comparison", "< 5 min, <5 min, 3 > 2", "< 5 min, <5 min, 3 > 2"},
      {"names", "Use <Stop A> & R&D; &c.; &unknown; &#; &#x;", "Use <Stop A> & R&D; &c.; &unknown; &#; &#x;"},
      {"tag without an end", "delay <b", "delay <b"},
      {"letter after a sign", "Use platform <b or c> today", "Use platform <b or c> today"},
      {"letter before another sign", "a <b, c <d and e> f", "a <b, c <d and e> f"},
      {"tag that another one cuts", "a <b <i>c</i>", "a <b c"},
      {"comment without an end", "a <!-- b", "a <!-- b"},
      {"address", "?a=1&copy=2&amp", "?a=1&copy=2&amp"},
      {"escaped sign", "&lt;5 min", "<5 min"},
      {"tag with attributes", "a <b class=x>c</b> <img src='d'/>e", "a c e"},
  });
}

}  // namespace
}  // namespace linewatch
