/* A library to be loaded by tests: made twice, with another SAMPLE_NUMBER each time, so that both have the same names.
 */
int sample_inner_number(void);
int sample_number(void);

int sample_inner_number(void) { return SAMPLE_NUMBER; }

/* By its name, not by its place: were the names of loaded libraries one space, the first library's would be called. */
int sample_number(void) { return sample_inner_number(); }
