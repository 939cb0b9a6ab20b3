/* Marks the names that libvorel.so exports; everything else is hidden. */
#ifndef VOREL_EXPORT_H_
#define VOREL_EXPORT_H_

#define VOREL_EXPORT __attribute__((visibility("default")))

#endif /* VOREL_EXPORT_H_ */
