#include "platform/macos/appkit/StatRowView.h"

#include <algorithm>

#include "platform/macos/Bridging.h"

namespace pellak::native {
namespace {

constexpr CGFloat kWidth = 290;
constexpr CGFloat kMargin = 14;
constexpr CGFloat kPadding = 4;
constexpr CGFloat kSymbol = 16;
constexpr CGFloat kTextLeft = kMargin + kSymbol + 8;
constexpr CGFloat kLine = 17;
constexpr CGFloat kSecondLine = 14;
constexpr CGFloat kBar = 4;
constexpr CGFloat kCores = 14;
constexpr CGFloat kCoreGap = 2;
constexpr CGFloat kFontSize = 13;
constexpr CGFloat kSmallFontSize = 11;

bool hasBars(const StatRow& riga) { return riga.fraction >= 0 || !riga.cores.empty(); }

CGFloat heightOf(const StatRow& riga) {
  CGFloat height = kPadding + kLine + kPadding;
  if (!riga.sub.empty()) height += kSecondLine;
  if (hasBars(riga)) height += riga.cores.empty() ? kBar + kPadding : kCores + kPadding;
  return height;
}

NSColor* colourOf(const StatRow& riga) {
  if (riga.symbol == "cpu") return NSColor.systemBlueColor;
  if (riga.symbol == "memorychip") return NSColor.systemPurpleColor;
  if (riga.symbol == "internaldrive") return NSColor.systemOrangeColor;
  if (riga.symbol == "battery.75percent") return NSColor.systemGreenColor;
  return NSColor.systemTealColor;
}

NSDictionary<NSAttributedStringKey, id>* style(CGFloat size, NSColor* colour) {
  return @{
    NSFontAttributeName : [NSFont monospacedDigitSystemFontOfSize:size weight:NSFontWeightRegular],
    NSForegroundColorAttributeName : colour
  };
}

/// Fitted into its square; nothing where the system has no such symbol.
void drawSymbol(NSString* name, NSColor* colour, CGFloat top) {
  NSImage* symbol = [NSImage imageWithSystemSymbolName:name accessibilityDescription:nil];
  symbol = [symbol imageWithSymbolConfiguration:[NSImageSymbolConfiguration
                                                    configurationWithHierarchicalColor:colour]];
  if (symbol == nil || symbol.size.width <= 0 || symbol.size.height <= 0) return;
  const CGFloat scale =
      std::min({kSymbol / symbol.size.width, kSymbol / symbol.size.height, CGFloat{1}});
  const NSSize size = NSMakeSize(symbol.size.width * scale, symbol.size.height * scale);
  [symbol drawInRect:NSMakeRect(kMargin + (kSymbol - size.width) / 2,
                                top + (kLine - size.height) / 2, size.width, size.height)
            fromRect:NSZeroRect
           operation:NSCompositingOperationSourceOver
            fraction:1
      respectFlipped:YES
               hints:nil];
}

void drawRounded(NSRect place, NSColor* colour) {
  const CGFloat radius = std::min({place.size.width, place.size.height, kBar}) / 2;
  [colour setFill];
  [[NSBezierPath bezierPathWithRoundedRect:place xRadius:radius yRadius:radius] fill];
}

void drawFraction(double fraction, NSColor* colour, NSRect place) {
  drawRounded(place, NSColor.quaternaryLabelColor);
  place.size.width *= std::clamp(fraction, 0.0, 1.0);
  if (place.size.width > 0) drawRounded(place, colour);
}

/// Side by side, filled from below.
void drawCores(const std::vector<double>& cores, NSColor* colour, NSRect place) {
  const auto count = static_cast<CGFloat>(cores.size());
  const CGFloat gap = std::min(kCoreGap, place.size.width / count / 2);
  NSRect bar = place;
  bar.size.width = (place.size.width - gap * (count - 1)) / count;
  for (const double core : cores) {
    drawRounded(bar, NSColor.quaternaryLabelColor);
    NSRect filled = bar;
    filled.size.height *= std::clamp(core, 0.0, 1.0);
    filled.origin.y += bar.size.height - filled.size.height;
    if (filled.size.height > 0) drawRounded(filled, colour);
    bar.origin.x += bar.size.width + gap;
  }
}

/// Symbol, title and value.
void drawFirstLine(const StatRow& riga, CGFloat right, CGFloat top) {
  drawSymbol(shownText(riga.symbol), colourOf(riga), top);
  [shownText(riga.title) drawAtPoint:NSMakePoint(kTextLeft, top)
                      withAttributes:style(kFontSize, NSColor.labelColor)];
  NSString* value = shownText(riga.value);
  NSDictionary<NSAttributedStringKey, id>* how = style(kFontSize, NSColor.secondaryLabelColor);
  [value drawAtPoint:NSMakePoint(right - [value sizeWithAttributes:how].width, top)
      withAttributes:how];
}

void drawRow(const StatRow& riga, NSRect bounds) {
  const CGFloat right = bounds.size.width - kMargin;
  CGFloat top = kPadding;
  drawFirstLine(riga, right, top);
  top += kLine;
  if (!riga.sub.empty()) {
    [shownText(riga.sub) drawAtPoint:NSMakePoint(kTextLeft, top)
                      withAttributes:style(kSmallFontSize, NSColor.secondaryLabelColor)];
    top += kSecondLine;
  }
  top += kPadding;
  if (!riga.cores.empty()) {
    drawCores(riga.cores, colourOf(riga), NSMakeRect(kTextLeft, top, right - kTextLeft, kCores));
  } else if (riga.fraction >= 0) {
    drawFraction(riga.fraction, colourOf(riga),
                 NSMakeRect(kTextLeft, top, right - kTextLeft, kBar));
  }
}

}  // namespace
}  // namespace pellak::native

@implementation StatRowView {
  pellak::StatRow riga_;
}

- (instancetype)initWithRow:(const pellak::StatRow&)riga {
  self = [super
      initWithFrame:NSMakeRect(0, 0, pellak::native::kWidth, pellak::native::heightOf(riga))];
  if (self == nil) return nil;
  riga_ = riga;
  self.autoresizingMask = NSViewWidthSizable;
  self.accessibilityElement = YES;
  self.accessibilityRole = NSAccessibilityStaticTextRole;
  self.accessibilityValue = self.testo;
  return self;
}

- (NSString*)testo {
  std::string testo = riga_.title + ": " + riga_.value;
  if (!riga_.sub.empty()) testo += ", " + riga_.sub;
  return pellak::native::shownText(testo);
}

- (BOOL)isFlipped {
  return YES;
}

- (void)drawRect:(NSRect)dirty {
  pellak::native::drawRow(riga_, self.bounds);
}

@end
