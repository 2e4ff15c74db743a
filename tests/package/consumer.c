/* Starts the installed engine, sends one line through it to the callback
 * and ends it; exits 0 when the line came back.  Texts go to the engine in
 * buffers of 80 characters, which it pads with blanks in place. */
#include <lfengine.h>
#include <stdint.h>
#include <string.h>

static int heard = 0;

static int hear(const char* line) {
  if (strncmp(line, "consumer here", 13) == 0) heard = 1;
  return 0;
}

int main(void) {
  int flags = LF_FLAG_PRINT, session = 0, mode = 0;
  char title[80] = "consumer";
  char text[80] = "consumer here";
  intptr_t callback = (intptr_t)hear;
  LFInit(&flags, title, &session, &callback, &mode);
  LFPstring(text);
  LFFinilize();
  return heard ? 0 : 1;
}
