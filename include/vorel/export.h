/* Marks the names that libvorel.so exports; everything else is hidden, and so are members of an
 * exported class that are marked local. */
#ifndef VOREL_EXPORT_H_
#define VOREL_EXPORT_H_

#define VOREL_EXPORT __attribute__((visibility("default")))
#define VOREL_LOCAL __attribute__((visibility("hidden")))

#endif /* VOREL_EXPORT_H_ */
