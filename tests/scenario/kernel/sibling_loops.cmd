sib
do i f=1 l=1
do j f=1 l=1
first
end_do
seti n v=0
do k f=1 l=2
second
if j .gt. 3
break_loop
endif
end_do
end_do
printi j
printi k
q
