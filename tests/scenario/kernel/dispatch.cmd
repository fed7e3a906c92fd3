disp

   /* a comment only
	seti	a	v=3	/* tabs are blanks
Print a
exit
abcdefghijklmnopqrstuvwxyz0123456789
water_waves
setch NAME s='seti b v=7'
setch WORD s='seti'
~WORD c v=8
~NONE
printi a
printi c
seti d &
 v=9 & /* not continued
seti e v=1 /* continued &
seti e v=2
printi d
printi e
tivla_version
name?
name? -f
q
