job
elem_alias
spring m=1 n=1
ppbridge
elem33
pelem40
help elem33
help pspring
fem_error
elem_grp e=41 code=1
elem_grp e=0 code=1
elem_grp code=2
elem_grp e=33 code=1
elem_grp e=2 code=1
fem_error -user -SE
elem_grp code=0 e=33
elem_grp e=2
fem_error
ls
elem_grp e=36 code=1
fem_error
quit
