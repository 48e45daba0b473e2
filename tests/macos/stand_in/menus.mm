#import "menus.h"

#include "record.h"

using keyvora::stand_in::record;

@implementation KVStandInMenus

- (NSMenuItem*)item:(NSString*)title action:(SEL)action key:(NSString*)key {
  NSMenuItem* item = [[NSMenuItem alloc] initWithTitle:title action:action keyEquivalent:key];
  item.target = self;
  return item;
}

- (NSMenuItem*)menu:(NSString*)title items:(NSArray<NSMenuItem*>*)items {
  NSMenu* menu = [[NSMenu alloc] initWithTitle:title];
  for (NSMenuItem* item in items) [menu addItem:item];
  NSMenuItem* holder = [[NSMenuItem alloc] initWithTitle:title action:nil keyEquivalent:@""];
  holder.submenu = menu;
  return holder;
}

- (NSMenu*)menuBar {
  NSMenuItem* quit = [[NSMenuItem alloc] initWithTitle:@"Quit"
                                                action:@selector(terminate:)
                                         keyEquivalent:@"q"];
  NSMenuItem* values = [self item:@"Paste Values" action:@selector(note:) key:@"v"];
  values.keyEquivalentModifierMask = NSEventModifierFlagCommand | NSEventModifierFlagShift;
  NSMenuItem* dialog = [self item:@"Open Dialog..." action:@selector(openDialog:) key:@""];
  NSMenuItem* column = [self menu:@"Column" items:@[ [self item:@"Hide" action:@selector(note:) key:@""] ]];

  NSMenu* bar = [[NSMenu alloc] initWithTitle:@""];
  [bar addItem:[self menu:@"Microsoft Excel" items:@[ quit ]]];
  [bar addItem:[self menu:@"File" items:@[ dialog ]]];
  [bar addItem:[self menu:@"Edit" items:@[ values ]]];
  [bar addItem:[self menu:@"Format" items:@[ column ]]];
  return bar;
}

- (void)note:(NSMenuItem*)item {
  record().line(std::string("menu ") + item.title.UTF8String);
}

- (void)openDialog:(NSMenuItem*)item {
  record().line("dialog opens");
  NSAlert* alert = [[NSAlert alloc] init];
  alert.messageText = @"A dialog of the stand-in";
  [alert addButtonWithTitle:@"OK"];
  [alert runModal];
  record().line("dialog closed");
}

@end
