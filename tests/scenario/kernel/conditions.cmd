cond
seti zero v=0
seti three v=3
setr half v=2.5
setch text s='x'
if zero
wrong
else
right1
endif
if three
right2
else
wrong
endif
if zero
wrong
if nested
else
endif
else
right3
if three .gt. 5
wrong
endif
right4
endif
if three .lt.  5
wrong: two blanks read as 0
endif
if three .gt. absent
right5: compared with 0
endif
if zero .gt. -3
wrong: no second argument, so zero is tested
endif
if three .eq. 2.5
right6: rounded to 3
endif
if three .gt. half
right7: compared as reals
endif
if half .le. three
right8
endif
if half .ne. 2.5
wrong
endif
if half .ge. 2.5
right9
endif
if absent
wrong
else
wrong: the test failed with an error
endif
if text
endif
if three .eq. text
endif
if three .xx. 3
endif
if three
right10
else
if three
endif
wrong
endif
right11
if
endif
q
