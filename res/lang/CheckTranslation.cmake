# Fails when the translation file TS has a text that is still to be translated: the tool that
# compiles it would leave the text out and say nothing.
file(READ ${TS} texts)
if(texts MATCHES "type=\"unfinished\"")
  message(FATAL_ERROR "${TS} has texts that are not translated")
endif()
