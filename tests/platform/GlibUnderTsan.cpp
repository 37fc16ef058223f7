// The desktop's libraries are not built with ThreadSanitizer, which therefore doesn't see their
// locks. What they do inside is left out; our own code below them is not.
extern "C" const char* __tsan_default_suppressions();  // NOLINT(bugprone-reserved-identifier)

extern "C" const char* __tsan_default_suppressions() {  // NOLINT(bugprone-reserved-identifier)
  return "called_from_lib:libglib-2.0.so\n"
         "called_from_lib:libgobject-2.0.so\n"
         "called_from_lib:libgio-2.0.so\n"
         "called_from_lib:libgdk_pixbuf-2.0.so\n";
}
