// GoogleTest includes it on Android; the level comes with the compiler's command line.
