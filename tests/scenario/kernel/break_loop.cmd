brk
do i f=1 l=3
do j f=1 l=3
printi j
if j .eq. 2
break_loop
endif
end_do
wrong
end_do
printi i
printi j
break_loop
logged
q
